#include "simulator/agent_language.h"

#include "simulator/wording.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

bool agentSpeaksChinese(const Scenario &scenario) {
    return isChinese(scenario.section("e2ee"_L1).value("lang"_L1).toString(qEnvironmentVariable("KORVEL_LANG")));
}

} // namespace korvel::sim
