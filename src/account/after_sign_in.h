#pragma once

#include "app/model/tray_state.h"
#include "app/notices.h"
#include "base/scheduler.h"

#include <functional>

namespace korvel {

/// What follows on every sign-in, whichever way it was made.
class AfterSignIn {
public:
    struct Hooks {
        std::function<void()> disregardOpenPolls;
        std::function<void()> render;
        std::function<void()> stopBrowserLogin;
        std::function<void(const Notice &)> showHUD;
        std::function<void(std::function<void()> then)> startStoppedAgent;
        std::function<void()> poll;
        std::function<void()> pairAfterLogin;
    };
    AfterSignIn(HealthState &health, const Scheduler &scheduler, Hooks hooks);

    /// This Mac is signed in as `user`: shows it, starts an agent that is stopped, polls and shows the pairing window.
    void signedIn(const QString &user);

private:
    HealthState &health;
    const Scheduler &scheduler;
    Hooks hooks;
};

} // namespace korvel
