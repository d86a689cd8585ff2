#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <functional>

namespace korvel::sim {

/// One request; header names in lower case.
struct HttpRequest {
    QByteArray method;
    QByteArray target; ///< Path and query, still encoded.
    QMap<QByteArray, QByteArray> headers = {};
    QByteArray body = {};

    /// The target without its query.
    QByteArray path() const { return target.split('?').first(); }
    /// A decoded field of the query, or of the form in the body; empty without one.
    QString queryField(const QString &name) const;
    QString formField(const QString &name) const;
    /// The token in the Authorization header (RFC 6750); empty without one.
    QString bearerToken() const;
};

struct HttpResponse {
    int status = 200;
    QByteArray type = "application/json";
    QByteArray body = {};
    QByteArray location = {}; ///< Target of a redirect.

    static HttpResponse json(const QJsonObject &object, int status = 200);
};

/// Sends the response to one request, at once or later, at most once.
using Respond = std::function<void(const HttpResponse &)>;

/// Status line and header, with the final empty line. `length` is the Content-Length.
QByteArray headOf(const HttpResponse &response, qint64 length, bool keepAlive);

/// A JSON object or a form with each password replaced by "***", for logs.
QByteArray withoutPasswords(const QByteArray &text);

} // namespace korvel::sim
