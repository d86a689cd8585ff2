#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "app/notices.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/alerts.h"
#include "ports/service_control.h"
#include "service/agent_api.h"
#include "service/config_waiter.h"

#include <functional>

namespace korvel {

AlertView signOutAlert();

/// Signs this Mac out: tells the agent, releases the credential, clears the configuration, stops the agent. Nothing on
/// the way that fails or hangs keeps it from ending.
class SignOut {
public:
    struct Hooks {
        std::function<void(std::function<void()> then)> unbindCurrent;
        std::function<void()> abandonLogins;
        std::function<void()> stopBrowserLogin;
        std::function<void()> poll;
        std::function<void(const Notice &)> showHUD;
    };
    SignOut(TrayState &state, const FixedConfig &fixed, const AgentConfig &config, ConfigWaiter &waiter, AgentApi &api,
            Alerts &alerts, ServiceControl &services, Scheduler &scheduler, Hooks hooks);

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
    Hooks hooks;
    bool underWay = false;
    Timer finishAnyway;
    Alive alive;
};

} // namespace korvel
