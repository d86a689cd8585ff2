#pragma once

#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QStringList>
#include <sys/types.h>

namespace korvel::sim {

/// One running process.
struct ProcessInfo {
    pid_t id = 0;
    QStringList commandLine; ///< Its name as first element.
};

/// The other processes of this user whose environment had this HOME when they started. What cannot be looked into, and
/// what has ended but was not yet waited for, is left out.
QList<ProcessInfo> processesOfHome(const QString &home);

/// Whether a variable of an environment names the home, which may have been removed.
inline bool namesHome(const QByteArray &variable, const QString &home) {
    const QString value = QFile::decodeName(variable.mid(5));
    const auto canonical = [](const QString &path) { return QFileInfo(path).canonicalFilePath(); };
    return variable.startsWith("HOME=") &&
           (value == home || (QFileInfo::exists(value) && canonical(value) == canonical(home)));
}

} // namespace korvel::sim
