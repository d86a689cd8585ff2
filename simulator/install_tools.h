#pragma once

#include "simulator/program_call.h"

#include <QJsonObject>
#include <QList>

// The tools that an update's installation runs. A package is a file whose first line is "korvel-package VERSION".
namespace korvel::sim {

// xattr -d NAME FILE: does nothing to the file, which has to be there.
ProgramResult xattr(const ProgramCall &call);

// cp SOURCE TARGET: the host's, with somebody who replaces the source by another package just before or just after if
// the scenario says so.
ProgramResult cp(const ProgramCall &call);

// shasum -a 256 FILE.
ProgramResult shasum(const ProgramCall &call);

// installer -pkg FILE -target /: notes the version and the hash of the package.
ProgramResult installer(const ProgramCall &call);

// What was installed in a home, in that order: "time" (ms), "version", "sha256".
QList<QJsonObject> installedPackages(const HomePaths &paths);

} // namespace korvel::sim
