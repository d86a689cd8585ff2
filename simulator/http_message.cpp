#include "simulator/http_message.h"

#include <QJsonDocument>

namespace korvel::sim {

namespace {

constexpr qsizetype LARGEST_HEAD = 64 << 10;
constexpr qint64 LARGEST_BODY = 1 << 20;

QByteArray reasonOf(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 302:
        return "Found";
    case 307:
        return "Temporary Redirect";
    case 308:
        return "Permanent Redirect";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 500:
        return "Internal Server Error";
    default:
        return "Status";
    }
}

} // namespace

QByteArray HttpRequest::path() const { return target.split('?').first(); }

QString HttpRequest::queryField(const QString &name) const { return formField(target.mid(path().size() + 1), name); }

QByteArray HttpRequest::header(const QByteArray &name) const {
    for (const auto &[key, value] : headers)
        if (key == name)
            return value;
    return {};
}

QString formField(const QByteArray &form, const QString &name) {
    for (QByteArray field : form.split('&')) {
        const qsizetype split = field.replace('+', ' ').indexOf('=');
        if (split > 0 && QString::fromUtf8(QByteArray::fromPercentEncoding(field.first(split))) == name)
            return QString::fromUtf8(QByteArray::fromPercentEncoding(field.sliced(split + 1)));
    }
    return {};
}

HttpAnswer HttpAnswer::json(const QJsonObject &object, int status) {
    return {status, "application/json", QJsonDocument(object).toJson(QJsonDocument::Compact)};
}

QByteArray headOf(const HttpAnswer &answer, qint64 length, bool keepAlive) {
    QByteArray more;
    for (const auto &[name, value] : answer.headers)
        more += "\r\n" + name + ": " + value;
    return "HTTP/1.1 " + QByteArray::number(answer.status) + ' ' + reasonOf(answer.status) +
           "\r\nContent-Type: " + answer.type + "\r\nContent-Length: " + QByteArray::number(length) +
           "\r\nCache-Control: no-store\r\nConnection: " + (keepAlive ? "keep-alive" : "close") + more + "\r\n\r\n";
}

HttpRequestReader::Progress HttpRequestReader::feed(const QByteArray &bytes) {
    buffer += bytes;
    if (!headRead) {
        const Progress progress = readHead();
        if (progress != Progress::Complete)
            return progress;
    }
    return buffer.size() < bodyLength ? Progress::Incomplete : Progress::Complete;
}

HttpRequestReader::Progress HttpRequestReader::readHead() {
    const qsizetype end = buffer.indexOf("\r\n\r\n");
    if (end > LARGEST_HEAD || (end < 0 && buffer.size() > LARGEST_HEAD))
        return Progress::Refused;
    if (end < 0)
        return Progress::Incomplete;
    QList<QByteArray> lines = buffer.left(end).split('\n');
    buffer.remove(0, end + 4);
    const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
    if (words.size() != 3 || !words[1].startsWith('/') || !words[2].startsWith("HTTP/1."))
        return Progress::Refused;
    request = {words[0], words[1], {}, {}, words[2] != "HTTP/1.0"};
    headRead = readFields(lines);
    return headRead ? Progress::Complete : Progress::Refused;
}

bool HttpRequestReader::readFields(const QList<QByteArray> &lines) {
    bodyLength = 0;
    for (const QByteArray &line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0)
            return false;
        const QByteArray name = line.left(colon).toLower();
        const QByteArray value = line.mid(colon + 1).trimmed();
        if (name == "transfer-encoding")
            return false;
        if (name == "connection" && value.toLower() == "close")
            request.keepAlive = false;
        if (name == "content-length") {
            bool isNumber = false;
            bodyLength = value.toLongLong(&isNumber);
            if (!isNumber || bodyLength < 0 || bodyLength > LARGEST_BODY)
                return false;
        }
        request.headers.append({name, value});
    }
    return true;
}

HttpRequest HttpRequestReader::take() {
    request.body = buffer.left(bodyLength);
    buffer.remove(0, bodyLength);
    headRead = false;
    bodyLength = 0;
    return std::exchange(request, {});
}

} // namespace korvel::sim
