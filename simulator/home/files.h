#pragma once

#include "base/private_file.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <functional>

namespace korvel::sim {

/// The JSON object in a file; empty if it is missing or contains anything else.
QJsonObject readObject(const QString &path);

/// Replaces a file, readable by this user only. False on failure.
inline bool replaceFile(const QString &path, const QByteArray &content) { return !replacePrivateFile(path, content); }
bool replaceFile(const QString &path, const QJsonObject &content);

/// Appends a JSON object as one line in a single write, so that lines of several processes do not mix.
bool appendLine(const QString &path, const QJsonObject &line);

/// The objects of a file of JSON lines, oldest first.
QList<QJsonObject> readLines(const QString &path);

/// Applies a merge patch (RFC 7396), in which null removes a key.
QJsonObject mergePatch(QJsonObject target, const QJsonObject &patch);

/// The value of a key in milliseconds; `fallback` if it is absent, negative or no number.
int milliseconds(const QJsonObject &object, QLatin1StringView key, int fallback = 0);

/// Milliseconds since the epoch.
qint64 timeNow();

/// Random bytes as lower-case hexadecimal digits.
QString randomHex(int bytes);

/// Six random decimal digits.
QString randomCode();

/// A JSON object in a file that the programs of a home share. Each read and each change holds a lock; a change replaces
/// the file.
class Document {
public:
    explicit Document(QString file) : path(std::move(file)) {}

    /// The object; empty if the file is missing or contains anything else.
    QJsonObject read() const;
    /// Calls `event` to change the object; discards the change if `event` returns false. Returns false then, or if the
    /// file cannot be written.
    bool change(const std::function<bool(QJsonObject &)> &event) const;
    /// Applies a merge patch (RFC 7396).
    bool patch(const QJsonObject &by) const;

private:
    QString path;
};

} // namespace korvel::sim
