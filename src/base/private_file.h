#pragma once

#include <QByteArray>
#include <QString>
#include <ctime>
#include <optional>
#include <sys/types.h>
#include <system_error>

namespace korvel {

/// A regular file, open for reading; -1 when it is anything else or cannot be opened. Never blocks on a pipe or a
/// device.
int openRegularFile(const QString &path);

/// The content of a regular file of at most `maxBytes`; none when it is anything else or cannot be read, and then `why`
/// gets the reason. Never blocks on a pipe or a device.
std::optional<QByteArray> readRegularFile(const QString &path, qint64 maxBytes, std::error_code *why = nullptr);

/// What one state of a file has and no later one will have, except one that follows within the same second: no program
/// can set the time of the last change to the file or its description.
struct FileStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::time_t changedAt = 0; ///< Seconds since 1970, rounded down.

    bool operator==(const FileStamp &) const = default;
    /// Whether the last change is so long ago that the next one will have another time; `now` as `changedAt`.
    bool isSettled(std::time_t now) const;
};

/// The stamp of what `path` names in the end; none when there is nothing.
std::optional<FileStamp> stampOf(const QString &path);

/// Makes a folder, mode 0700, with the folders above it; true when it exists afterwards.
bool makePrivateFolder(const QString &path);

/// Gives an existing folder mode 0700; false when it could not, and for a link to one.
bool closeFolder(const QString &path);

/// Replaces a file by a new one of mode 0600, through a temporary file in the same folder and a rename: whoever reads
/// sees the old content or the new, whole, also when the disk is full. A missing folder is made, mode 0700. Gives the
/// system's error when it could not; the old file stays.
std::error_code replacePrivateFile(const QString &path, const QByteArray &content);

/// The error with which replacePrivateFile() would fail now, as far as writing the temporary file shows; the file
/// itself stays as it is.
std::error_code tryPrivateFile(const QString &path, const QByteArray &content);

} // namespace korvel
