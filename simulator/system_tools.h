#pragma once

#include "simulator/program_call.h"

namespace korvel::sim {

// pkill -f PATTERN: SIGTERM to the processes of this home whose command line matches; status 1 when there is none.
ProgramResult pkill(const ProgramCall &call);

// open URL...: notes what was to be opened.
ProgramResult open(const ProgramCall &call);

} // namespace korvel::sim
