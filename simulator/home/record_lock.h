#pragma once

#include <QString>
#include <sys/types.h>

namespace korvel::sim {

// A record lock (fcntl(2)) on a whole file: the kernel says which process holds it, and releases it when that process
// ends in whatever way. The holder must not open the file a second time: closing that would release it too.

/// Takes the lock for this process, creating the file. The descriptor to close for releasing it, or -1 when another
/// process holds it.
int takeRecordLock(const QString &path);

/// The other process that holds the lock; 0 when none does.
pid_t recordLockHolder(const QString &path);

} // namespace korvel::sim
