#pragma once

#include "account/binding.h"
#include "account/browser_login.h"
#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/app_services.h"
#include "ports/service_control.h"
#include "ports/windows.h"
#include "service/agent_api.h"
#include "service/agent_config.h"

namespace korvel {

AlertView signOutAlert();

/// Signs this Mac out: notifies the agent, releases the credential, clears the configuration and stops the agent.
/// Always completes, even if a step fails or hangs.
class SignOut {
public:
    SignOut(TrayState &state, const FixedConfig &fixed, const AgentConfig &config, ConfigWaiter &waiter, AgentApi &api,
            Alerts &alerts, ServiceControl &services, Scheduler &scheduler, Notices &notices, Poller &poller,
            Binding &binding, BrowserLogin &browserLogin);

    /// Asks the user, then signs out.
    void logoutDialog();

private:
    void tellAgent();
    void signOutRest();
    void clear();
    void finish(bool cleared);

    TrayState &state;
    const FixedConfig &fixed;
    const AgentConfig &config;
    ConfigWaiter &waiter;
    AgentApi &api;
    Alerts &alerts;
    ServiceControl &services;
    Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Binding &binding;
    BrowserLogin &browserLogin;
    bool underWay = false;
    Timer finishAnyway;
    Alive alive;
};

} // namespace korvel
