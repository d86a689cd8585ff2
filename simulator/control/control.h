#pragma once

#include "simulator/home/program_call.h"

namespace korvel::sim {

/// The program korvel-simulator: a person's hand on a home. Returns its exit status.
int control(const ProgramCall &call);

} // namespace korvel::sim
