#include "simulator/home/home_locks.h"

#include <QFile>
#include <chrono>
#include <fcntl.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace korvel::sim {

namespace {

struct flock wholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

} // namespace

int takeRecordLock(const QString &path) {
    const int file = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    const struct flock lock = wholeFile();
    if (file < 0 || ::fcntl(file, F_SETLK, &lock) == 0)
        return file;
    ::close(file);
    return -1;
}

pid_t recordLockHolder(const QString &path) {
    QFile file(path);
    struct flock lock = wholeFile();
    if (!file.open(QIODevice::ReadOnly) || ::fcntl(file.handle(), F_GETLK, &lock) != 0 || lock.l_type == F_UNLCK)
        return 0;
    return lock.l_pid;
}

HomeWatch::HomeWatch(const HomePaths &paths, QString file, std::function<void()> onGone) {
    const bool owned = recordLockHolder(paths.ownerLock()) != 0;
    QObject::connect(&timer, &QTimer::timeout, &timer, [=] {
        if (!QFile::exists(file) || (owned && recordLockHolder(paths.ownerLock()) == 0))
            onGone();
    });
    timer.start(1s);
}

} // namespace korvel::sim
