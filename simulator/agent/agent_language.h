#pragma once

#include "app/model/wording.h"
#include "simulator/home/scenario.h"

namespace korvel::sim {

/// Settles the language of the agent's texts: the scenario's, else that of KORVEL_LANG.
inline void speakAgentLanguage(const Scenario &scenario) {
    const QJsonValue entry = scenario.section(QLatin1StringView("e2ee")).value(QLatin1StringView("lang"));
    ZH = entry.toString(qEnvironmentVariable("KORVEL_LANG")).startsWith(QLatin1StringView("zh"));
}

} // namespace korvel::sim
