#pragma once

#include "simulator/home/program_call.h"

namespace korvel::sim {

/// pkill -f PATTERN: SIGTERM to the processes of this home whose command line matches; status 1 when there is none.
ProgramResult pkill(const ProgramCall &call);

/// open URL...: logs what was to be opened.
ProgramResult open(const ProgramCall &call);

/// xattr -d NAME FILE: does nothing to the file, which has to be there.
ProgramResult xattr(const ProgramCall &call);

/// cp SOURCE TARGET: the host's. Somebody replaces the source by another package just before or after if the scenario
/// says so.
ProgramResult cp(const ProgramCall &call);

/// shasum -a 256 FILE.
ProgramResult shasum(const ProgramCall &call);

/// installer -pkg FILE -target /: logs the version and the hash of a package, a file whose first line is
/// "korvel-package VERSION".
ProgramResult installer(const ProgramCall &call);

} // namespace korvel::sim
