#include "platform/private_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvel {

namespace {

/// Reads or writes all bytes, going on after a signal; false at the end of the file or on an error.
template <class Step>
bool transferAll(qsizetype size, Step step) {
    for (qsizetype moved = 0; moved < size;) {
        const ssize_t n = step(moved, static_cast<size_t>(size - moved));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        moved += n;
    }
    return true;
}

/// The file that `path` names in the end: a user may keep the configuration elsewhere behind a link.
QString linkTarget(const QString &path) {
    const QFileInfo info(path);
    const QString target = info.canonicalFilePath();
    if (!target.isEmpty())
        return target;
    return info.isSymLink() ? info.symLinkTarget() : path; // a link to what is still to be made
}

int openRegularFile(const QString &path, struct stat &info) {
    // O_NONBLOCK: opening a pipe that nobody writes would wait for ever.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0 || (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode)))
        return fd;
    ::close(fd);
    return -1;
}

} // namespace

int openRegularFile(const QString &path) {
    struct stat info {};
    return openRegularFile(path, info);
}

std::optional<QByteArray> readRegularFile(const QString &path, qint64 maxBytes) {
    struct stat info {};
    const int fd = openRegularFile(path, info);
    if (fd < 0)
        return std::nullopt;
    std::optional<QByteArray> content;
    if (info.st_size <= maxBytes) {
        QByteArray bytes(static_cast<qsizetype>(info.st_size), Qt::Uninitialized);
        const bool whole =
            transferAll(bytes.size(), [&](qsizetype at, size_t n) { return ::read(fd, bytes.data() + at, n); });
        if (whole)
            content = std::move(bytes);
    }
    ::close(fd);
    return content;
}

bool FileStamp::isSettled(std::time_t now) const {
    constexpr std::time_t COARSEST_TICK = 2;    // of the file systems that USB sticks come with
    return now - changedAt > COARSEST_TICK + 1; // one more for the rounding
}

std::optional<FileStamp> stampOf(const QString &path) {
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return std::nullopt;
    return FileStamp{.device = info.st_dev, .inode = info.st_ino, .size = info.st_size, .changedAt = info.st_ctime};
}

bool makePrivateFolder(const QString &path) {
    const QFileInfo info(path.isEmpty() ? QStringLiteral(".") : path);
    if (info.isDir())
        return true;
    if (!QDir().mkpath(info.absolutePath()))
        return false;
    return ::mkdir(QFile::encodeName(path).constData(), 0700) == 0 || QFileInfo(path).isDir();
}

bool closeFolder(const QString &path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool closed = ::fchmod(fd, 0700) == 0;
    ::close(fd);
    return closed;
}

bool replacePrivateFile(const QString &path, const QByteArray &content) {
    const QString target = linkTarget(path);
    QByteArray temporary = QFile::encodeName(target) + ".XXXXXX";
    const int fd = ::mkstemp(temporary.data()); // mode 0600 from the first byte
    if (fd < 0)
        return false;
    bool good =
        transferAll(content.size(), [&](qsizetype at, size_t n) { return ::write(fd, content.constData() + at, n); });
    good = good && ::fchmod(fd, 0600) == 0 && ::fsync(fd) == 0;
    good = ::close(fd) == 0 && good;
    good = good && ::rename(temporary.constData(), QFile::encodeName(target).constData()) == 0;
    if (!good)
        ::unlink(temporary.constData());
    return good;
}

} // namespace korvel
