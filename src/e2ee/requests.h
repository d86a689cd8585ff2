#pragma once

#include "service/agent_api.h"

#include <QJsonObject>

namespace korvel {

// The user's answers about encryption, as requests to the agent.

AgentRequest pairDeviceRequest(const QString &pendingId, const QString &code); ///< May take the agent a minute.
AgentRequest rejectDeviceRequest(const QString &pendingId);
AgentRequest renewCodeRequest();
AgentRequest dismissAlarmRequest(const QString &id);
AgentRequest acceptResetRequest();
AgentRequest installSpeechRequest();
AgentRequest e2LogoutRequest();

/// Sends such a request once. `done` gets the agent's reply, or an error if there is no usable one. Without a token it
/// sends nothing and calls `done` at once.
void e2Post(AgentApi &api, const AgentRequest &request, Done<QJsonObject> done);

} // namespace korvel
