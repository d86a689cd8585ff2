#define BOOST_DISABLE_ASSERTS // Beast asserts too much of an empty chunked body that arrives in pieces
#include "platform/net/http_messages.h"

#include <algorithm>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/string_body.hpp>
#include <string>

namespace korvel {

namespace {

namespace beast = boost::beast;
namespace http = boost::beast::http;

constexpr qsizetype MAX_HEAD = 32 << 10;        ///< Bytes; Beast throws for fields of 64 KiB.
constexpr qsizetype MAX_HEADER_VALUE = 8 << 10; ///< Bytes of one request header.

beast::string_view viewOf(const QByteArray &text) { return {text.constData(), static_cast<size_t>(text.size())}; }

/// Rejects line breaks: a value from a file must not inject a header.
bool isHeaderValue(const QByteArray &text) {
    return text.size() <= MAX_HEADER_VALUE && !text.contains('\r') && !text.contains('\n') && !text.contains('\0');
}

} // namespace

std::optional<QByteArray> serializeRequest(const HttpRequest &request, const QByteArray &authority,
                                           const QByteArray &target) {
    http::request<http::string_body> message;
    message.version(11);
    message.method_string(viewOf(request.method));
    message.target(viewOf(target));
    message.set(http::field::host, viewOf(authority));
    message.set(http::field::accept, "*/*");
    for (const auto &[name, value] : request.headers) {
        if (!isHeaderValue(value))
            return std::nullopt;
        message.set(viewOf(name), viewOf(value));
    }
    message.body() = request.body.toStdString();
    message.prepare_payload();
    QByteArray bytes;
    http::request_serializer<http::string_body> serializer(message);
    for (beast::error_code failure; !failure && !serializer.is_done();)
        serializer.next(failure, [&](beast::error_code &, const auto &buffers) {
            for (const boost::asio::const_buffer buffer : beast::buffers_range_ref(buffers))
                bytes.append(static_cast<const char *>(buffer.data()), static_cast<qsizetype>(buffer.size()));
            serializer.consume(beast::buffer_bytes(buffers));
        });
    return bytes;
}

class HttpResponseParser::Message : public http::response_parser<http::string_body> {};

HttpResponseParser::HttpResponseParser(qint64 maxBytes) : limit(maxBytes) {}
HttpResponseParser::~HttpResponseParser() = default;

void HttpResponseParser::feed(QByteArrayView bytes) {
    const auto room = static_cast<qsizetype>(std::clamp<qint64>(limit - received, 0, bytes.size()));
    received += bytes.size();
    pending.append(bytes.first(room));
    while (!isOver() && parseSome())
        ;
    if (!isOver() && room < bytes.size())
        fail(ErrorKind::TooLarge, QStringLiteral("more than the request allows"));
    if (!pending.isEmpty() || room < bytes.size())
        persistent = false; // bytes after the response belong to no request
}

bool HttpResponseParser::parseSome() {
    if (!message) {
        // Beast judges a part of a head differently after another part, so it gets the head whole.
        constexpr QByteArrayView START = "HTTP/";
        const qsizetype known = std::min(pending.size(), START.size());
        if (QByteArrayView(pending).first(known) != START.first(known))
            fail(ErrorKind::UnreadableResponse, QStringLiteral("not HTTP"));
        if (error || (pending.size() <= MAX_HEAD && !pending.contains("\r\n\r\n")))
            return false;
        message = std::make_unique<Message>();
        message->header_limit(static_cast<std::uint32_t>(MAX_HEAD));
        message->body_limit(static_cast<std::uint64_t>(limit));
    }
    // The head alone first: with a body in the same bytes, Beast forgets that the body exceeds its limit.
    message->eager(message->is_header_done());
    beast::error_code failure;
    const size_t taken =
        message->put(boost::asio::buffer(pending.constData(), static_cast<size_t>(pending.size())), failure);
    pending.remove(0, static_cast<qsizetype>(taken));
    if (failure == http::error::need_more)
        return false;
    if (failure) {
        const bool tooLarge = failure == http::error::body_limit || failure == http::error::header_limit;
        fail(tooLarge ? ErrorKind::TooLarge : ErrorKind::UnreadableResponse, QString::fromStdString(failure.message()));
    } else if (message->is_header_done()) {
        messageRead();
    }
    return !pending.isEmpty();
}

void HttpResponseParser::messageRead() {
    const auto &head = message->get();
    const bool isCoded = head.find(http::field::transfer_encoding) != head.end();
    if (head.result() == http::status::switching_protocols || (isCoded && !message->chunked()))
        return fail(ErrorKind::UnreadableResponse, QStringLiteral("a protocol or encoding that was not requested"));
    if (head.result_int() < 100)
        return fail(ErrorKind::UnreadableResponse, QStringLiteral("no status"));
    if (!message->is_done())
        return;
    if (head.result_int() < 200) // an interim response; the final one follows
        return message.reset();
    persistent = message->keep_alive();
    whole = true;
}

void HttpResponseParser::end() {
    persistent = false;
    if (isOver())
        return;
    beast::error_code failure = http::error::partial_message;
    if (message && message->is_header_done())
        message->put_eof(failure);
    if (failure)
        return fail(ErrorKind::Interrupted, hasBegun() ? QStringLiteral("closed before the response was whole")
                                                       : QStringLiteral("closed without a response"));
    whole = true;
}

Result<HttpReply> HttpResponseParser::outcome() {
    if (error)
        return *error;
    const auto &response = message->get();
    return HttpReply{static_cast<int>(response.result_int()), QByteArray::fromStdString(response.body())};
}

void HttpResponseParser::fail(ErrorKind kind, const QString &detail) { error = Error{kind, detail}; }

} // namespace korvel
