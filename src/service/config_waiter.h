#pragma once

#include "base/scheduler.h"
#include "service/agent_config.h"

#include <functional>
#include <vector>

namespace korvel {

/// Delays changes to the agent configuration while the agent is writing it. A half-written file is read again for a
/// short time before it counts as empty.
class ConfigWaiter {
public:
    ConfigWaiter(const AgentConfig &config, Scheduler &scheduler);

    /// Calls `then` once the file is not half-written: usually at once, and after 0.5 s at the latest.
    void whenWhole(std::function<void()> then);

private:
    void readWhenWhole(int rereads);

    const AgentConfig &config;
    Scheduler &scheduler;
    std::vector<std::function<void()>> waiting;
    Timer nextRead;
};

} // namespace korvel
