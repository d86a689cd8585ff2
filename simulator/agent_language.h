#pragma once

#include "simulator/scenario.h"

namespace korvel::sim {

// Whether the agent words its texts in Chinese: the scenario's language, else that of KORVEL_LANG.
bool agentSpeaksChinese(const Scenario &scenario);

} // namespace korvel::sim
