#pragma once

#include "ports/http_client.h"

#include <memory>
#include <optional>

namespace korvel {

/// Serializes an HTTP/1.1 request (RFC 9112) to `authority` for `target`; none if a header is invalid.
std::optional<QByteArray> serializeRequest(const HttpRequest &request, const QByteArray &authority,
                                           const QByteArray &target);

/// Incremental parser of one HTTP/1.1 response (RFC 9112). Independent of sockets.
class HttpResponseParser {
public:
    /// `maxBytes`: limit of the response, headers included.
    explicit HttpResponseParser(qint64 maxBytes);
    ~HttpResponseParser();

    /// Parses the next bytes. Bytes after the end do not belong to the response.
    void feed(QByteArrayView bytes);
    /// The connection has ended. This completes a response whose length is not given.
    void end();

    /// Whether any byte was received.
    bool hasBegun() const { return received > 0; }
    /// Whether outcome() is available.
    bool isOver() const { return whole || error; }
    /// Whether the connection can be reused after this response.
    bool leavesConnection() const { return whole && persistent; }
    /// The result. Call once, after isOver().
    Result<HttpReply> outcome();

private:
    class Message;
    /// Parses from `pending`; false if no progress is possible.
    bool parseSome();
    void messageRead();
    void fail(ErrorKind kind, const QString &detail);

    const qint64 limit;
    std::unique_ptr<Message> message;
    QByteArray pending; ///< Bytes not parsed yet.
    qint64 received = 0;
    bool whole = false;
    bool persistent = false;
    std::optional<Error> error;
};

} // namespace korvel
