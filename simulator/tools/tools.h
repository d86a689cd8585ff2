#pragma once

#include "simulator/home/program_call.h"

#include <QLatin1StringView>
#include <optional>

namespace korvel::sim {

/// Applies the scenario's entry `name` in `section`: waits for "delayMs"; with a "status", returns it and "stderr" as
/// the tool's result. None: the tool does its work.
std::optional<ProgramResult> toolFault(const HomePaths &paths, QLatin1StringView section, const QString &name);

/// The tool launchctl: print, bootstrap, bootout, enable, disable and kickstart, in the domain of this user, with the
/// exit statuses that the real one gives. The scenario's "launchctl" comes first.
ProgramResult launchctl(const ProgramCall &call);

/// osascript with the one call that the tray makes: a shell script that is to run with administrator rights, and the
/// prompt to show. Plays the password prompt, then runs the script with /bin/sh, as this user. Its absolute paths lead
/// to simulated programs, to a few tools of the host, or to the home's own /private/tmp; a script that names any other
/// is not run. What stands between single quotes is left as it is.
ProgramResult osascript(const ProgramCall &call);

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
