#pragma once

#include <QString>

#include <sys/types.h>

namespace korvel::sim {

// A record lock (fcntl(2)) on a whole file: the kernel says which process holds it, and lets go of it when that process
// ends in whatever way. The holder must not open the file a second time: closing that would let go too.

// Takes the lock for this process, creating the file. The descriptor to close for letting go, or -1 when another
// process holds it.
int takeRecordLock(const QString &path);

// The process that holds the lock; 0 when none does. Another process's lock only.
pid_t recordLockHolder(const QString &path);

} // namespace korvel::sim
