#pragma once

#include "base/alive.h"
#include "ports/notices.h"
#include "service/agent_api.h"

#include <functional>

namespace korvel {

/// Asks the agent to install speech recognition; its report shows the progress.
class SpeechInstall {
public:
    SpeechInstall(AgentApi &a, Notices &n) : api(a), notices(n) {}

    void e2AsrInstall();

private:
    AgentApi &api;
    Notices &notices;
    Alive alive;
};

} // namespace korvel
