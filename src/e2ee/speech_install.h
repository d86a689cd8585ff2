#pragma once

#include "base/alive.h"
#include "ports/app_services.h"
#include "service/agent_api.h"

namespace korvel {

/// Requests the installation of speech recognition from the agent, whose report shows the progress.
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
