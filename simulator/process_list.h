#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace korvel::sim {

// One running process.
struct ProcessInfo {
    pid_t id = 0;
    QStringList commandLine; // its name as first element
};

// The other processes of this user whose environment had this HOME when they started. What cannot be looked into, and
// what has ended but was not yet waited for, is left out.
QList<ProcessInfo> processesOfHome(const QString &home);

} // namespace korvel::sim
