#pragma once

#include "simulator/home/program_call.h"

namespace korvel::sim {

/// The program korvel-simulator, which controls a home by hand. Returns its exit status.
int control(const ProgramCall &call);

} // namespace korvel::sim
