#pragma once

#include <QString>

namespace korvel {

// Programs of macOS, always run at these absolute paths.
inline const QString LAUNCHCTL = QStringLiteral("/bin/launchctl");
inline const QString PKILL = QStringLiteral("/usr/bin/pkill");
inline const QString OPEN = QStringLiteral("/usr/bin/open");

/// Whether `executable` is one of them, so that a stand-in root takes its place.
inline bool isSystemTool(const QString &executable) {
    return executable == LAUNCHCTL || executable == PKILL || executable == OPEN;
}

} // namespace korvel
