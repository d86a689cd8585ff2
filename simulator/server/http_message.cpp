#include "simulator/server/http_message.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QUrlQuery>
#include <boost/beast/core/buffers_range.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/serializer.hpp>

namespace korvel::sim {

using namespace Qt::StringLiterals;
namespace beast = boost::beast;
namespace http = boost::beast::http;

namespace {

QString fieldOf(QByteArray form, const QString &name) {
    return QUrlQuery(QString::fromUtf8(form.replace('+', ' '))).queryItemValue(name, QUrl::FullyDecoded);
}

beast::string_view viewOf(const QByteArray &text) { return {text.constData(), size_t(text.size())}; }

} // namespace

QString HttpRequest::queryField(const QString &name) const { return fieldOf(target.mid(path().size() + 1), name); }

QString HttpRequest::formField(const QString &name) const { return fieldOf(body, name); }

QString HttpRequest::bearerToken() const {
    const QByteArray field = headers.value("authorization");
    return field.startsWith("Bearer ") ? QString::fromUtf8(field.sliced(7)) : QString();
}

HttpResponse HttpResponse::json(const QJsonObject &object, int status) {
    return {.status = status, .body = QJsonDocument(object).toJson(QJsonDocument::Compact)};
}

QByteArray headOf(const HttpResponse &response, qint64 length, bool keepAlive) {
    http::response<http::empty_body> message;
    message.result(unsigned(response.status));
    message.set(http::field::content_type, viewOf(response.type));
    message.set(http::field::cache_control, "no-store");
    if (!response.location.isEmpty())
        message.set(http::field::location, viewOf(response.location));
    message.content_length(std::uint64_t(length));
    message.keep_alive(keepAlive);
    QByteArray bytes;
    beast::error_code failure;
    http::response_serializer<http::empty_body>(message).next(failure, [&](beast::error_code &, const auto &buffers) {
        for (const boost::asio::const_buffer buffer : beast::buffers_range_ref(buffers))
            bytes.append(static_cast<const char *>(buffer.data()), qsizetype(buffer.size()));
    });
    return bytes;
}

QByteArray withoutPasswords(const QByteArray &text) {
    static const QRegularExpression passwords(uR"((?|("password"\s*:\s*")(?:[^"\\]|\\.)*|(\bpassword=)[^&]*))"_s);
    return QString::fromUtf8(text).replace(passwords, u"\\1***"_s).toUtf8();
}

} // namespace korvel::sim
