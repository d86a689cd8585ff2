#pragma once

#include "app/model/paths.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "ports/notices.h"
#include "ports/poller.h"
#include "ports/renderer.h"
#include "ports/service_control.h"
#include "service/agent_config.h"
#include "service/repair.h"

#include <functional>
#include <optional>

namespace korvel {

enum class ToggleDirection { Pause, Resume };

/// What the user's wish to toggle means in the present state.
ToggleDirection toggleDirection(const HealthState &health);

/// The notice at the end of a toggle. `look`: the last look at the job; `running`: whether the agent responds.
Notice toggleNotice(ToggleDirection direction, ServiceResult look, bool running, const QString &statusLine);

/// Pauses and resumes sync: takes the agent's job down so that it stays down, or brings it back.
class SyncToggle {
public:
    struct Hooks {
        std::function<QString()> statusLine;
        std::function<void()> showLogin;
    };
    SyncToggle(TrayState &state, const FixedConfig &fixed, const Paths &paths, const AgentConfig &config,
               ServiceControl &services, Scheduler &scheduler, Notices &notices, Poller &poller, Renderer &renderer,
               Repair &repair, Hooks hooks);

    /// Pauses or resumes; ignored while an earlier one is under way. What is missing for it is asked for instead: a
    /// sign-in, or a repair of the installation.
    void toggleAgent();

private:
    void pause();
    void waitUntilGone(Instant deadline);
    void resume(int attemptsLeft);
    void finish(ToggleDirection direction, ServiceResult look);
    void report(ToggleDirection direction, ServiceResult look);

    TrayState &state;
    const FixedConfig &fixed;
    const Paths &paths;
    const AgentConfig &config;
    ServiceControl &services;
    Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Renderer &renderer;
    Repair &repair;
    Hooks hooks;
    Timer next;
    Alive alive;
};

} // namespace korvel
