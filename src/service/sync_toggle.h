#pragma once

#include "app/model/paths.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "ports/app_services.h"
#include "ports/service_control.h"
#include "service/agent_config.h"
#include "service/repair.h"

#include <functional>

namespace korvel {

enum class ToggleDirection { Pause, Resume };

/// Whether a toggle pauses or resumes in the current state.
ToggleDirection toggleDirection(const HealthState &health);

/// The notice at the end of a toggle. `lookup`: result of the last job lookup; `running`: whether the agent responds.
Notice toggleNotice(ToggleDirection direction, ServiceResult lookup, bool running, const QString &statusLine);

/// Pauses and resumes sync: unloads and disables the agent's job, or enables and loads it.
class SyncToggle {
public:
    struct Hooks {
        std::function<QString()> statusLine;
        std::function<void()> showLogin;
    };
    SyncToggle(TrayState &state, const FixedConfig &fixed, const Paths &paths, const AgentConfig &config,
               ServiceControl &services, Scheduler &scheduler, Notices &notices, Poller &poller, Renderer &renderer,
               Repair &repair, Hooks hooks);

    /// Pauses or resumes; ignored while a toggle is running. Starts the sign-in instead if this Mac is not bound, and
    /// a repair if the job file is missing.
    void toggleAgent();

private:
    void pause();
    void waitUntilGone(Instant deadline);
    void resume(int attemptsLeft);
    void finish(ToggleDirection direction, ServiceResult lookup);
    void report(ToggleDirection direction, ServiceResult lookup);

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
