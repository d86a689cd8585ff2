#pragma once

#include "base/private_file.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <functional>

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

/// A JSON object in a file that the programs of a home share. Each look and each change is one step under a lock; the
/// file is replaced as a whole.
class Document {
public:
    explicit Document(QString file) : path(std::move(file)) {}

    /// The object; empty when there is no file or it holds anything else.
    QJsonObject read() const;
    /// Lets `event` change the object. When it returns false, nothing of it is kept. False then, or when the file could
    /// not be written.
    bool change(const std::function<bool(QJsonObject &)> &event) const;
    /// Applies an RFC 7396 merge patch.
    bool patch(const QJsonObject &by) const;

private:
    QString path;
};

} // namespace korvel::sim
