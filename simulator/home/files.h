#pragma once

#include "base/private_file.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

namespace korvel::sim {

/// The JSON object in a file; empty when it is missing or holds anything else.
QJsonObject readObject(const QString &path);

/// Replaces a file that only this user may read; false when it could not.
inline bool replaceFile(const QString &path, const QByteArray &content) { return !replacePrivateFile(path, content); }
bool replaceFile(const QString &path, const QJsonObject &content);

/// Appends one JSON object as one line in a single write, so that lines of several processes do not mix.
bool appendLine(const QString &path, const QJsonObject &line);

/// The objects of a file of JSON lines, oldest first.
QList<QJsonObject> readLines(const QString &path);

/// RFC 7396: `target` with `patch` applied, where null removes a key.
QJsonObject mergePatch(QJsonObject target, const QJsonObject &patch);

/// A key's value as a number of milliseconds; `fallback` when it is absent, negative or no number.
int milliseconds(const QJsonObject &object, QLatin1StringView key, int fallback = 0);

/// Milliseconds since the epoch.
qint64 timeNow();

/// That many random bytes, as lower-case hexadecimal digits.
QString randomHex(int bytes);

/// Six random decimal digits.
QString randomCode();

} // namespace korvel::sim
