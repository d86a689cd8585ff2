#pragma once

#include "simulator/program_call.h"

namespace korvel::sim {

// The program korvel-agent: `run`, `login --stdin-json`, `install-service` and `install-hooks`. Returns its exit
// status.
int agentProgram(const ProgramCall &call);

// Runs the agent until SIGTERM or SIGINT: the loopback interface, and what the scenario's "agent" says.
int runAgent(const ProgramCall &call);

// Carries out one sign-in request, `input`, and answers it on standard output, or does as the scenario's "login" says.
int agentLogin(const ProgramCall &call, const QByteArray &input);

} // namespace korvel::sim
