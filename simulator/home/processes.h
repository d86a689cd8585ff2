#pragma once

#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QStringList>
#include <sys/types.h>

namespace korvel::sim {

struct ProcessInfo {
    pid_t id = 0;
    QStringList commandLine; ///< The first element is the name.
};

/// The other processes of this user that were started with this HOME. Omits unreadable ones and zombies.
QList<ProcessInfo> processesOfHome(const QString &home);

/// Whether an environment variable is HOME with this directory, which may have been removed.
inline bool namesHome(const QByteArray &variable, const QString &home) {
    const QString value = QFile::decodeName(variable.mid(5));
    const auto canonical = [](const QString &path) { return QFileInfo(path).canonicalFilePath(); };
    return variable.startsWith("HOME=") &&
           (value == home || (QFileInfo::exists(value) && canonical(value) == canonical(home)));
}

} // namespace korvel::sim
