#pragma once

#include "app/model/tray_state.h"
#include "ports/programs.h"

namespace korvel {

/// The command line of the privileged shell. Copies the package into a folder that only root can write, checks the hash
/// of the copy and installs the copy. Exit status: 70 (no folder), 71 (no copy), 72 (wrong hash) or the installer's.
QString installScript(const QString &package, const QString &sha);

/// The program run that asks for an administrator's password and then runs the script.
ProgramRun buildInstall(const QString &package, const UpdateInfo &info);

/// How a privileged run ended.
enum class InstallOutcome { Installed, Cancelled, Modified, Failed };
InstallOutcome installOutcome(const ProgramResult &result);

} // namespace korvel
