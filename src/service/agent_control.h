#pragma once

#include "app/model/paths.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "ports/app_services.h"
#include "ports/desktop.h"
#include "ports/programs.h"
#include "ports/service_control.h"
#include "service/agent_config.h"
#include "service/repair.h"

#include <functional>

namespace korvel {

/// Starts, restarts and stops the agent's launchd job, and shows its log.
class AgentControl {
public:
    AgentControl(TrayState &state, const FixedConfig &fixed, const Paths &paths, const AgentConfig &config,
                 ServiceControl &services, Programs &programs, Desktop &desktop, Scheduler &scheduler, Notices &notices,
                 Repair &repair);

    /// Loads the job if this Mac is bound and the job is not loaded, then calls `then`.
    void ensureAgentLoaded(std::function<void()> then);
    /// Restarts the job so that it picks up a new sign-in, then calls `then`.
    void restartAgent(std::function<void()> then);
    /// Starts the job, even a paused one, if the agent does not respond and the job is not loaded; then calls `then`.
    void startStoppedAgent(std::function<void()> then);
    /// Stops the job and every stray agent process, then quits the tray.
    void quitAll();
    void openLog();

private:
    TrayState &state;
    const FixedConfig &fixed;
    const Paths &paths;
    const AgentConfig &config;
    ServiceControl &services;
    Programs &programs;
    Desktop &desktop;
    Scheduler &scheduler;
    Notices &notices;
    Repair &repair;
    bool quitting = false;
    Timer quitAnyway;
    Alive alive;
};

} // namespace korvel
