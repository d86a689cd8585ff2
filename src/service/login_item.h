#pragma once

#include "app/model/paths.h"

#include <QString>

namespace korvel {

/// Text of the tray's own launchd job file (a property list, see launchd.plist(5)).
QString loginItemText(const QString &executablePath, const QString &logPath);

/// Whether a tray at this path may start itself at login: only an installed copy.
bool isInstalledCopy(const QString &executablePath);

/// Writes the tray's login item when there is none and this is an installed copy. An existing one is never touched.
/// Failures are silent: a convenience must not keep the tray from starting.
void ensureTrayLoginItem(const Paths &paths, const QString &executablePath);

} // namespace korvel
