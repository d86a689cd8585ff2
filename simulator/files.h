#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

namespace korvel::sim {

// The JSON object in a file; nothing when the file is missing, larger than 8 MiB, or holds anything else.
std::optional<QJsonObject> readObject(const QString &path);

// Replaces a file by writing a temporary one beside it, with `mode` from its first byte, and renaming that. Creates the
// folders above it. On failure the old file is whole.
bool replaceFile(const QString &path, const QByteArray &content, unsigned mode = 0600);

// Appends one JSON object as one line in a single write, so that lines of several processes do not mix. Creates the
// folders above it.
bool appendLine(const QString &path, const QJsonObject &line);

// The objects of a file of JSON lines, in order; what is no object is left out.
QList<QJsonObject> readLines(const QString &path);

// RFC 7396: `target` with `patch` applied, where null removes a key.
QJsonObject mergePatch(QJsonObject target, const QJsonObject &patch);

// A key's value as a number of milliseconds; `fallback` when it is absent, negative or no number.
int milliseconds(const QJsonObject &object, QLatin1StringView key, int fallback = 0);

// Whether two paths lead to the same existing folder, or are equal.
bool isSameFolder(const QString &one, const QString &other);

// Milliseconds since the epoch, as the logs have them.
qint64 timeNow();

} // namespace korvel::sim
