#pragma once

#include <QJsonObject>
#include <QString>
#include <functional>

namespace korvel::sim {

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
