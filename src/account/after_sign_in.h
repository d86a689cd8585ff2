#pragma once

#include "app/model/tray_state.h"
#include "base/scheduler.h"
#include "ports/app_services.h"
#include "service/agent_control.h"

#include <functional>

namespace korvel {

/// The steps after every successful sign-in, whatever its method.
class AfterSignIn {
public:
    struct Hooks {
        std::function<void()> stopBrowserLogin;
        std::function<void()> pairAfterLogin;
    };
    AfterSignIn(HealthState &health, const Scheduler &scheduler, Notices &notices, Poller &poller, Renderer &renderer,
                AgentControl &agent, Hooks hooks);

    /// This Mac is signed in as `user`: shows a notice, starts a stopped agent, polls and shows the pairing window.
    void signedIn(const QString &user);

private:
    HealthState &health;
    const Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Renderer &renderer;
    AgentControl &agent;
    Hooks hooks;
};

} // namespace korvel
