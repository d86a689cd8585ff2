#pragma once

#include "service/agent_api.h"

#include <QJsonObject>
#include <functional>
#include <optional>

namespace korvel {

// The answers that the user gives to the agent's encryption machinery, as requests.

AgentRequest pairDeviceRequest(const QString &pendingId, const QString &code); ///< May take the agent a minute.
AgentRequest rejectDeviceRequest(const QString &pendingId);
AgentRequest renewCodeRequest();
AgentRequest dismissAlarmRequest(const QString &id);
AgentRequest acceptResetRequest();
AgentRequest installSpeechRequest();
AgentRequest e2LogoutRequest();

/// Posts one such request, once. `done` gets the agent's reply, or nothing when there is no usable one; without a token
/// nothing is sent and `done` is called at once.
void e2Post(AgentApi &api, const AgentRequest &request, Done<QJsonObject> done);

} // namespace korvel
