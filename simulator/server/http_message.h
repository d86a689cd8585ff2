#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <functional>

namespace korvel::sim {

/// One request as it was read; header names in lower case.
struct HttpRequest {
    QByteArray method;
    QByteArray target; ///< Path and query as sent.
    QMap<QByteArray, QByteArray> headers = {};
    QByteArray body = {};

    /// The target without its query.
    QByteArray path() const { return target.split('?').first(); }
    /// A field of the query, or of the form in the body, decoded; empty when there is none.
    QString queryField(const QString &name) const;
    QString formField(const QString &name) const;
    /// The token of the Authorization field (RFC 6750); empty when there is none.
    QString bearerToken() const;
};

struct HttpResponse {
    int status = 200;
    QByteArray type = "application/json";
    QByteArray body = {};
    QByteArray location = {}; ///< Of a redirection.

    static HttpResponse json(const QJsonObject &object, int status = 200);
};

/// Gives the response to one request; may be called later, and at most once.
using Respond = std::function<void(const HttpResponse &)>;

/// Status line and header, up to and with the empty line. `length` is the announced length of the body.
QByteArray headOf(const HttpResponse &response, qint64 length, bool keepAlive);

/// A JSON object or a form as a log may hold it: each password as "***".
QByteArray withoutPasswords(const QByteArray &text);

} // namespace korvel::sim
