#pragma once

#include "base/alive.h"
#include "e2ee/pairing.h"
#include "ports/app_services.h"
#include "ports/windows.h"
#include "service/agent_api.h"

#include <QJsonObject>

namespace korvel {

/// The alert for a security alarm.
AlertView alarmAlert(const QJsonObject &alarm);

/// Shows security alarms and encryption resets, and sends the user's answers to the agent.
class Alarms {
public:
    Alarms(AgentApi &api, Alerts &alerts, Notices &notices, Poller &poller, Pairing &pairing);

    /// Opens the alert for an alarm, unless one is open.
    void showAlarm(const QJsonObject &alarm, OpenedBy by);

private:
    void answered(const QJsonObject &alarm, const AlertAnswer &answer);
    void rejoin();

    AgentApi &api;
    Alerts &alerts;
    Notices &notices;
    Poller &poller;
    Pairing &pairing;
    Alive alive;
};

} // namespace korvel
