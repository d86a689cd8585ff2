#pragma once

#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/app_services.h"
#include "ports/windows.h"
#include "service/agent_api.h"

namespace korvel {

/// The alert that asks for the code of a new device. `error`, of a failed attempt, stands above the usual text.
AlertView approveAlert(const QJsonObject &request, const QString &error);

/// Lets the user approve or reject a device that requests to join.
class Approval {
public:
    Approval(E2State &e2ee, AgentApi &api, Alerts &alerts, Scheduler &scheduler, Notices &notices, Poller &poller);

    /// Opens the alert for an approval request, unless an alert is open. `error`: why the last attempt failed.
    void showApprove(const QJsonObject &request, OpenedBy by, const QString &error = {});
    /// Asks again for a code that was wrong, if a retry is due and no alert is open.
    void askAgain();

private:
    void answered(const QJsonObject &request, const AlertAnswer &answer);
    void allow(const QJsonObject &request, const QString &code);
    void deny(const QJsonObject &request);
    void verdict(const QJsonObject &request, const Result<QJsonObject> &reply);
    void askAgainSoon(const QJsonObject &request, const QString &error);

    E2State &e2ee;
    AgentApi &api;
    Alerts &alerts;
    Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Timer again;
    Alive alive;
};

} // namespace korvel
