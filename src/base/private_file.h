#pragma once

#include <QByteArray>
#include <QString>
#include <ctime>
#include <optional>
#include <sys/types.h>
#include <system_error>

namespace korvel {

/// Opens a regular file for reading; -1 if it is anything else or cannot be opened. Never blocks on a pipe or device.
int openRegularFile(const QString &path);

/// The content of a regular file of at most `maxBytes`. On failure, none, with the reason in `why`. Never blocks on a
/// pipe or device.
std::optional<QByteArray> readRegularFile(const QString &path, qint64 maxBytes, std::error_code *why = nullptr);

/// Identifies one state of a file. Two changes within the same second may share a stamp. Programs cannot set the status
/// change time, so a stamp cannot be forged.
struct FileStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::time_t changedAt = 0; ///< Seconds since 1970, rounded down.

    bool operator==(const FileStamp &) const = default;
    /// Whether the last change is old enough that the next one gets a different time; `now` in the unit of `changedAt`.
    bool isSettled(std::time_t now) const;
};

/// The stamp of the file at `path`, as QFile::encodeName() gives it, links followed; none if there is no file.
std::optional<FileStamp> stampOf(const QByteArray &path);

/// Creates a folder with mode 0700, and its parents. True if it exists afterwards.
bool makePrivateFolder(const QString &path);

/// Sets an existing folder to mode 0700. False on failure and for a symbolic link.
bool closeFolder(const QString &path);

/// Atomically replaces a file by a new one of mode 0600, through a temporary file in the same folder and a rename.
/// Readers see the old or the new content, never a part. Creates a missing folder with mode 0700. On failure, returns
/// the system's error and keeps the old file.
std::error_code replacePrivateFile(const QString &path, const QByteArray &content);

/// The error that replacePrivateFile() would return at this moment, found by writing the temporary file. The file
/// itself is not changed.
std::error_code tryPrivateFile(const QString &path, const QByteArray &content);

} // namespace korvel
