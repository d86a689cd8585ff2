#pragma once

#include "app/notices.h"
#include "base/alive.h"
#include "service/agent_api.h"

#include <functional>

namespace korvel {

/// Asks the agent to install speech recognition; its report shows the progress.
class SpeechInstall {
public:
    struct Hooks {
        std::function<void(const Notice &)> showHUD;
    };
    SpeechInstall(AgentApi &a, Hooks h) : api(a), hooks(std::move(h)) {}

    void e2AsrInstall();

private:
    AgentApi &api;
    Hooks hooks;
    Alive alive;
};

} // namespace korvel
