#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>

#include <functional>
#include <utility>

namespace korvel::sim {

// One request as it was read (RFC 9112); header names in lower case.
struct HttpRequest {
    QByteArray method;
    QByteArray target; // path and query as sent
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    bool keepAlive = true; // the client leaves the connection open after the answer

    // The target without its query.
    QByteArray path() const;
    // A field of the query, decoded as a form's is: "+" is a blank. Empty when there is none.
    QString queryField(const QString &name) const;
    // The first header of that lower-case name; a null array when there is none.
    QByteArray header(const QByteArray &name) const;
};

// One answer.
struct HttpAnswer {
    int status = 200;
    QByteArray type = "application/json";
    QByteArray body;
    QList<std::pair<QByteArray, QByteArray>> headers = {}; // besides those that every answer has

    static HttpAnswer json(const QJsonObject &object, int status = 200);
};

// A field of a submitted form or of a query (application/x-www-form-urlencoded); empty when there is none.
QString formField(const QByteArray &form, const QString &name);

// Gives the answer to one request; may be called later, and at most once.
using Respond = std::function<void(const HttpAnswer &)>;

// Status line and header of an answer, up to and with the empty line. `length` is the announced length of the body.
QByteArray headOf(const HttpAnswer &answer, qint64 length, bool keepAlive);

// Reads requests out of the bytes of one connection. Header at most 64 KiB, body at most 1 MiB, no chunked bodies.
class HttpRequestReader {
public:
    enum class Progress { Incomplete, Complete, Refused };

    // Takes in more bytes. After Refused the connection is of no more use.
    Progress feed(const QByteArray &bytes);
    // The complete request. What follows it on the connection is kept for the next one.
    HttpRequest take();

private:
    Progress readHead();
    bool readFields(const QList<QByteArray> &lines);

    QByteArray buffer;
    HttpRequest request;
    bool headRead = false;
    qint64 bodyLength = 0;
};

} // namespace korvel::sim
