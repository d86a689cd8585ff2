#pragma once

#include "simulator/home/home_paths.h"

#include <QString>
#include <QTimer>
#include <functional>
#include <sys/types.h>

namespace korvel::sim {

// A record lock (fcntl(2)) on a whole file: the kernel says which process holds it, and releases it when that process
// ends in whatever way. The holder must not open the file a second time: closing that would release it too.

/// Takes the lock for this process, creating the file. The descriptor to close for releasing it, or -1 when another
/// process holds it.
int takeRecordLock(const QString &path);

/// The other process that holds the lock; 0 when none does.
pid_t recordLockHolder(const QString &path);

/// Reports within seconds to a process that belongs to a home that it should end.
class HomeWatch {
public:
    /// Calls `onGone` once `file` is no longer there, or, if a process holds the home now, once none does.
    HomeWatch(const HomePaths &paths, QString file, std::function<void()> onGone);

private:
    QTimer timer;
};

} // namespace korvel::sim
