#pragma once

#include <QString>
#include <chrono>

namespace korvel {

// macOS programs, always run by absolute path.
inline const QString LAUNCHCTL = QStringLiteral("/bin/launchctl");
inline const QString PKILL = QStringLiteral("/usr/bin/pkill");
inline const QString OPEN = QStringLiteral("/usr/bin/open");
inline const QString OSASCRIPT = QStringLiteral("/usr/bin/osascript");
inline const QString XATTR = QStringLiteral("/usr/bin/xattr");

/// Time limit for tools that finish quickly.
constexpr std::chrono::milliseconds SHORT_TOOL_TIMEOUT{10000};

/// Whether `executable` is one of these tools, which a simulated root replaces.
inline bool isSystemTool(const QString &executable) {
    return executable == LAUNCHCTL || executable == PKILL || executable == OPEN || executable == OSASCRIPT ||
           executable == XATTR;
}

} // namespace korvel
