#pragma once

#include "simulator/home/home_paths.h"

#include <QString>
#include <QTimer>
#include <functional>
#include <sys/types.h>

namespace korvel::sim {

// Record locks (fcntl(2)) on whole files: the kernel reports the process that holds one and releases it when that
// process ends. The holder must not open the file again: closing it releases the lock.

/// Takes the lock for this process; creates the file. Returns the descriptor, whose closing releases the lock, or -1 if
/// another process holds it.
int takeRecordLock(const QString &path);

/// The other process that holds the lock; 0 if there is none.
pid_t recordLockHolder(const QString &path);

/// Notifies a process of a home that it should end, within seconds after the home has gone.
class HomeWatch {
public:
    /// Calls `onGone` when `file` has disappeared, or when the process that owns the home now has ended.
    HomeWatch(const HomePaths &paths, QString file, std::function<void()> onGone);

private:
    QTimer timer;
};

} // namespace korvel::sim
