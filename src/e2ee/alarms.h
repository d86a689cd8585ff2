#pragma once

#include "app/notices.h"
#include "base/alive.h"
#include "ports/alerts.h"
#include "service/agent_api.h"

#include <QJsonObject>
#include <functional>

namespace korvel {

/// The alert for a security alarm.
AlertView alarmAlert(const QJsonObject &alarm);

/// Shows security alarms and encryption resets, and answers them.
class Alarms {
public:
    struct Hooks {
        std::function<void(const Notice &)> showHUD;
        std::function<void(std::function<void()> then)> poll;
        std::function<void()> pairAfterLogin;
    };
    Alarms(AgentApi &api, Alerts &alerts, Hooks hooks);

    /// Opens the alert for an alarm, unless one is open.
    void showAlarm(const QJsonObject &alarm, OpenedBy by);

private:
    void answered(const QJsonObject &alarm, const AlertAnswer &answer);
    void rejoin();

    AgentApi &api;
    Alerts &alerts;
    Hooks hooks;
    Alive alive;
};

} // namespace korvel
