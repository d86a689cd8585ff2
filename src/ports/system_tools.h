#pragma once

#include <QString>
#include <chrono>

namespace korvel {

// Programs of macOS, always run at these absolute paths.
inline const QString LAUNCHCTL = QStringLiteral("/bin/launchctl");
inline const QString PKILL = QStringLiteral("/usr/bin/pkill");
inline const QString OPEN = QStringLiteral("/usr/bin/open");
inline const QString OSASCRIPT = QStringLiteral("/usr/bin/osascript");
inline const QString XATTR = QStringLiteral("/usr/bin/xattr");

/// The limit of a tool that has next to nothing to do.
constexpr std::chrono::milliseconds SHORT_TOOL_TIMEOUT{10000};

/// Whether `executable` is one of them, so that a stand-in root takes its place.
inline bool isSystemTool(const QString &executable) {
    return executable == LAUNCHCTL || executable == PKILL || executable == OPEN || executable == OSASCRIPT ||
           executable == XATTR;
}

} // namespace korvel
