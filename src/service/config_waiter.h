#pragma once

#include "base/scheduler.h"
#include "service/agent_config.h"

#include <functional>
#include <vector>

namespace korvel {

/// Makes changes of the agent configuration wait while the agent writes it: a file that is caught half-written is read
/// again shortly before it counts as empty.
class ConfigWaiter {
public:
    ConfigWaiter(const AgentConfig &config, Scheduler &scheduler);

    /// Calls `then` once the file is not half-written: at once as a rule, and in any case after half a second.
    void whenWhole(std::function<void()> then);

private:
    void look(int rereads);

    const AgentConfig &config;
    Scheduler &scheduler;
    std::vector<std::function<void()>> waiting;
    Timer nextLook;
};

} // namespace korvel
