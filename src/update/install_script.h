#pragma once

#include "app/model/tray_state.h"
#include "ports/programs.h"

namespace korvel {

/// The privileged shell's one line: copies the package into a folder that only it can write, checks the hash of the
/// copy, installs the copy. Ends with 70 (no folder), 71 (no copy), 72 (another hash) or the installer's status.
QString installScript(const QString &package, const QString &sha);

/// The run that asks for an administrator's password and then runs the script.
ProgramRun buildInstall(const QString &package, const UpdateInfo &info);

/// How a privileged run ended.
enum class InstallOutcome { Installed, Cancelled, Modified, Failed };
InstallOutcome installOutcome(const ProgramResult &result);

} // namespace korvel
