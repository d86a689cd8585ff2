#pragma once

#include "app/model/fixed_config.h"
#include "app/model/paths.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/app_services.h"
#include "ports/programs.h"
#include "service/agent_command.h"

#include <functional>

namespace korvel {

/// Makes the bundled agent program reinstall its launchd job and its hooks.
class Repair {
public:
    Repair(TrayState &state, const FixedConfig &fixed, const Paths &paths, const AgentCommand &command,
           Programs &programs, Scheduler &scheduler, Notices &notices, Poller &poller, Renderer &renderer);

    /// Repairs, polls the agent, then calls `then`. Calls `then` at once if a repair is already running.
    void repairService(std::function<void()> then);
    /// Repairs at the user's request, then shows a notice that says whether the job file exists.
    void repairClicked();

private:
    void repaired(bool good, std::function<void()> then);

    TrayState &state;
    const FixedConfig &fixed;
    const Paths &paths;
    const AgentCommand &command;
    Programs &programs;
    Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Renderer &renderer;
    Alive alive;
};

} // namespace korvel
