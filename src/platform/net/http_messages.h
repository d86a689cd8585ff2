#pragma once

#include "ports/http_client.h"

#include <memory>
#include <optional>

namespace korvel {

/// One HTTP/1.1 request (RFC 9112) to `authority` for `target`, as it leaves; none when a header cannot be one.
std::optional<QByteArray> serializeRequest(const HttpRequest &request, const QByteArray &authority,
                                           const QByteArray &target);

/// Reads one HTTP/1.1 response (RFC 9112) from its bytes, in whatever pieces they come. Knows no socket.
class HttpResponseParser {
public:
    /// `maxBytes`: the most that may come, headers included.
    explicit HttpResponseParser(qint64 maxBytes);
    ~HttpResponseParser();

    /// Takes the next bytes. Those behind the end of the response are no part of it.
    void feed(QByteArrayView bytes);
    /// The connection ended: a response is whole then if nothing else says where it ends.
    void end();

    /// Whether any byte has come.
    bool hasBegun() const { return received > 0; }
    /// Whether the outcome is known.
    bool isOver() const { return whole || error; }
    /// Whether the connection can serve another request after this response.
    bool leavesConnection() const { return whole && persistent; }
    /// The outcome, once it is known. Called once.
    Result<HttpReply> outcome();

private:
    class Message;
    /// Takes what it can of `pending`; false when nothing more can be taken.
    bool parseSome();
    void messageRead();
    void fail(ErrorKind kind, const QString &detail);

    const qint64 limit;
    std::unique_ptr<Message> message;
    QByteArray pending; ///< Bytes that only later ones give a meaning.
    qint64 received = 0;
    bool whole = false;
    bool persistent = false;
    std::optional<Error> error;
};

} // namespace korvel
