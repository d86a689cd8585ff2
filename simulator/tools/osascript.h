#pragma once

#include "simulator/home/program_call.h"

namespace korvel::sim {

/// osascript with the one call that the tray makes: a shell script that is to run with administrator rights, and the
/// prompt to show. Plays the password prompt, then runs the script with /bin/sh, as this user. Its absolute paths lead
/// to simulated programs, to a few tools of the host, or to the home's own /private/tmp; a script that names any other
/// is not run. What stands between single quotes is left as it is.
ProgramResult osascript(const ProgramCall &call);

} // namespace korvel::sim
