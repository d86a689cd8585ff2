#pragma once

#include "simulator/home/program_call.h"

namespace korvel::sim {

/// The agent's name and version as it reports them.
inline const QString AGENT_VERSION = QStringLiteral("korvel-agent/1.4.2");

/// The program korvel-agent: `run`, `login --stdin-json`, `install-service` and `install-hooks`. Returns its exit
/// status.
int agentProgram(const ProgramCall &call);

} // namespace korvel::sim
