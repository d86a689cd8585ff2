#pragma once

#include "simulator/home/program_call.h"

#include <QLatin1StringView>
#include <optional>

namespace korvel::sim {

/// Applies the scenario's entry `name` in `section`: waits for "delayMs"; with a "status", returns it and "stderr" as
/// the tool's result. None: the tool does its work.
std::optional<ProgramResult> toolFault(const HomePaths &paths, QLatin1StringView section, const QString &name);

/// launchctl: print, bootstrap, bootout, enable, disable and kickstart in the user's domain, with the exit statuses of
/// the real one. The scenario's "launchctl" takes precedence.
ProgramResult launchctl(const ProgramCall &call);

/// osascript with the one call of the tray: a shell script with administrator rights, and a prompt. Simulates the
/// password prompt, then runs the script with /bin/sh as this user. Absolute paths are replaced by simulated programs,
/// a few tools of the host, or the home's /private/tmp; a script with any other path is refused. Text in single quotes
/// stays.
ProgramResult osascript(const ProgramCall &call);

/// pkill -f PATTERN: sends SIGTERM to the processes of this home whose command line matches; status 1 if there is none.
ProgramResult pkill(const ProgramCall &call);

/// open URL...: logs the addresses.
ProgramResult open(const ProgramCall &call);

/// xattr -d NAME FILE: only checks that the file exists.
ProgramResult xattr(const ProgramCall &call);

/// cp SOURCE TARGET: runs the host's. Replaces the source by another package just before or after, if the scenario says
/// so.
ProgramResult cp(const ProgramCall &call);

/// shasum -a 256 FILE.
ProgramResult shasum(const ProgramCall &call);

/// installer -pkg FILE -target /: logs version and hash of a package, a file whose first line is "korvel-package
/// VERSION".
ProgramResult installer(const ProgramCall &call);

} // namespace korvel::sim
