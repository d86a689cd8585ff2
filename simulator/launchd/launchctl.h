#pragma once

#include "simulator/home/program_call.h"

namespace korvel::sim {

/// The tool launchctl: print, bootstrap, bootout, enable, disable and kickstart, in the domain of this user, with the
/// exit statuses that the real one gives. The scenario's "launchctl" comes first.
ProgramResult launchctl(const ProgramCall &call);

} // namespace korvel::sim
