#include "simulator/file_lock.h"

#include <sys/file.h>

namespace korvel::sim {

FileLock::FileLock(const QString &path)
    : file(path), held(file.open(QIODevice::ReadWrite) && ::flock(file.handle(), LOCK_EX) == 0) {}

} // namespace korvel::sim
