#pragma once

#include "platform/http_client.h"

#include <optional>

namespace korvel {

/// Reads one HTTP/1.1 answer (RFC 9112) from its bytes, in whatever pieces they come. Knows no socket.
class HttpAnswer {
public:
    /// `maxBytes`: the most that head and body may be together.
    explicit HttpAnswer(qint64 maxBytes) : limit(maxBytes) {}

    /// Takes the next bytes. Those behind the end of the answer are no part of it.
    void feed(QByteArrayView bytes);
    /// The connection ended: an answer is whole then if nothing else says where it ends.
    void end();

    /// Whether any byte has come.
    bool hasBegun() const { return begun; }
    /// Whether the outcome is known.
    bool isOver() const { return part == Part::Whole || error.has_value(); }
    /// Whether the connection can serve another request after this answer.
    bool leavesConnection() const { return part == Part::Whole && persistent; }
    /// The outcome, once it is known. Called once.
    Result<HttpReply> outcome();

private:
    enum class Part { Status, Headers, Counted, ChunkSize, Chunk, ChunkEnd, Trailers, UntilEnd, Whole };

    qsizetype takeLine(QByteArrayView bytes);
    qsizetype takeBody(QByteArrayView bytes);
    void interpret(QByteArrayView content);
    void readStatus(QByteArrayView content);
    void readHeader(QByteArrayView content);
    void readChunkSize(QByteArrayView content);
    void beginBody();
    bool count(qsizetype more);
    void fail(ErrorKind kind, const char *detail);

    const qint64 limit;
    Part part = Part::Status;
    std::optional<Error> error;
    bool begun = false;
    bool persistent = false;
    bool chunked = false;
    std::optional<qint64> length; ///< Content-Length.
    qint64 total = 0;             ///< Bytes of head and body so far.
    qint64 left = 0;              ///< Bytes of the counted body, or of the chunk, that are still to come.
    qsizetype head = 0;           ///< Bytes of lines other than those of chunks.
    QByteArray line;              ///< The beginning of a line whose end has not come.
    HttpReply reply;
};

} // namespace korvel
