#include "base/private_file.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace korvel {

namespace {

std::error_code lastError() { return {errno, std::generic_category()}; }

/// Fewer bytes than requested without an error means end of file.
struct Transfer {
    qsizetype bytes = 0;
    std::error_code error = {};
};

/// Reads or writes `size` bytes; resumes after a signal.
template <class Step>
Transfer transferAll(qsizetype size, Step step) {
    Transfer done;
    while (done.bytes < size) {
        const ssize_t n = step(done.bytes, static_cast<size_t>(size - done.bytes));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            done.error = lastError();
        if (n <= 0)
            break;
        done.bytes += n;
    }
    return done;
}

/// The file behind symbolic links: users may keep the configuration elsewhere.
QString linkTarget(const QString &path) {
    const QFileInfo info(path.isEmpty() ? QStringLiteral(".") : path);
    const QString target = info.canonicalFilePath();
    if (!target.isEmpty())
        return target;
    return info.isSymLink() ? info.symLinkTarget() : path; // a link to a file that does not exist yet
}

/// Sets errno when it returns -1.
int openRegularFile(const QString &path, struct stat &info) {
    // Without O_NONBLOCK, opening a pipe without a writer blocks indefinitely.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0 || (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode)))
        return fd;
    ::close(fd);
    errno = EINVAL;
    return -1;
}

std::error_code makeFolder(const QString &path) {
    const QFileInfo info(path.isEmpty() ? QStringLiteral(".") : path);
    if (info.isDir())
        return {};
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(info.absolutePath()).toStdString(), error);
    if (!error && ::mkdir(QFile::encodeName(path).constData(), 0700) != 0 && !QFileInfo(path).isDir())
        error = lastError();
    return error;
}

std::error_code writeAll(int fd, const QByteArray &content) {
    const Transfer written =
        transferAll(content.size(), [&](qsizetype at, size_t n) { return ::write(fd, content.constData() + at, n); });
    if (written.error || written.bytes == content.size())
        return written.error;
    return std::make_error_code(std::errc::io_error);
}

/// Writes a new file next to `target`; `temporary` receives its name. Leaves no file after an error.
std::error_code writeBeside(const QString &target, const QByteArray &content, QByteArray &temporary) {
    temporary = QFile::encodeName(target) + ".XXXXXX";
    const int fd = ::mkstemp(temporary.data()); // creates the file with mode 0600
    if (fd < 0)
        return lastError();
    std::error_code error = writeAll(fd, content);
    if (!error && (::fchmod(fd, 0600) != 0 || ::fsync(fd) != 0))
        error = lastError();
    if (::close(fd) != 0 && !error)
        error = lastError();
    if (error)
        ::unlink(temporary.constData());
    return error;
}

} // namespace

int openRegularFile(const QString &path) {
    struct stat info {};
    return openRegularFile(path, info);
}

std::optional<QByteArray> readRegularFile(const QString &path, qint64 maxBytes, std::error_code *why) {
    struct stat info {};
    const int fd = openRegularFile(path, info);
    std::error_code error;
    QByteArray content;
    if (fd < 0) {
        error = lastError();
    } else if (info.st_size > maxBytes) {
        error = std::make_error_code(std::errc::file_too_large);
    } else {
        content.resize(static_cast<qsizetype>(info.st_size));
        const Transfer read =
            transferAll(content.size(), [&](qsizetype at, size_t n) { return ::read(fd, content.data() + at, n); });
        content.truncate(read.bytes); // the file may have been truncated meanwhile
        error = read.error;
    }
    if (fd >= 0)
        ::close(fd);
    if (why)
        *why = error;
    return error ? std::nullopt : std::optional(content);
}

bool FileStamp::isSettled(std::time_t now) const {
    constexpr std::time_t COARSEST_TICK = 2;    // seconds; FAT, the usual format of USB sticks
    return now - changedAt > COARSEST_TICK + 1; // +1 for rounding
}

std::optional<FileStamp> stampOf(const QByteArray &path) {
    struct stat info {};
    if (::stat(path.constData(), &info) != 0)
        return std::nullopt;
    return FileStamp{.device = info.st_dev, .inode = info.st_ino, .size = info.st_size, .changedAt = info.st_ctime};
}

bool makePrivateFolder(const QString &path) { return !makeFolder(path); }

bool closeFolder(const QString &path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool closed = ::fchmod(fd, 0700) == 0;
    ::close(fd);
    return closed;
}

std::error_code replacePrivateFile(const QString &path, const QByteArray &content) {
    if (const std::error_code noFolder = makeFolder(QFileInfo(path).absolutePath()))
        return noFolder;
    const QString target = linkTarget(path);
    QByteArray temporary;
    std::error_code error = writeBeside(target, content, temporary);
    if (error || ::rename(temporary.constData(), QFile::encodeName(target).constData()) == 0)
        return error;
    error = lastError();
    ::unlink(temporary.constData());
    return error;
}

std::error_code tryPrivateFile(const QString &path, const QByteArray &content) {
    if (const std::error_code noFolder = makeFolder(QFileInfo(path).absolutePath()))
        return noFolder;
    QByteArray temporary;
    const std::error_code error = writeBeside(linkTarget(path), content, temporary);
    if (!error)
        ::unlink(temporary.constData());
    return error;
}

} // namespace korvel
