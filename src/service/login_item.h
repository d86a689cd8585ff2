#pragma once

#include "app/model/paths.h"

#include <QString>

namespace korvel {

/// Text of the tray's own launchd job file (a property list, see launchd.plist(5)).
QString loginItemText(const QString &executablePath, const QString &logPath);

/// Whether the program at this path is the installed one. Only that one may start at login.
bool isInstalledProgram(const QString &executablePath);

/// Writes the tray's login item if there is none and the program is installed. Never changes an existing one. Ignores
/// failures, because the tray must start without a login item too.
void ensureTrayLoginItem(const Paths &paths, const QString &executablePath);

} // namespace korvel
