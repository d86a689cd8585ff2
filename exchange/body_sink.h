#pragma once

#include "exchange/messages.h"

#include <functional>
#include <memory>

namespace korvel::exchange {

/// Receives the bytes of a response and enforces its size limit. A rejected byte ends the exchange.
class BodySink {
public:
    explicit BodySink(qint64 maxBytes) : limit(maxBytes) {}
    virtual ~BodySink() = default;
    /// Counts header bytes. False: over the limit.
    virtual bool header(qint64 bytes) = 0;
    /// Takes body bytes of a response with this status; `expected` is the total size, 0: unknown. False: rejected.
    virtual bool body(QByteArrayView bytes, int status, qint64 expected) = 0;
    /// Ends the response, complete or not. Returns the reason if bytes were rejected.
    virtual std::optional<Error> end(int status) = 0;
    /// The part of the body kept in memory.
    QByteArray takeBody() { return std::move(kept); }

protected:
    /// Whether this many more bytes are within the limit.
    bool accept(qint64 more);
    Error tooLargeError() const;

    const qint64 limit;
    qint64 total = 0;
    bool tooLarge = false;
    QByteArray kept;
};

/// Keeps the whole body in memory; the limit includes headers.
std::unique_ptr<BodySink> makeMemorySink(qint64 maxBytes);

/// Writes the body of a response of status 200 to a new private file as it arrives, replacing an existing one. Of any
/// other body, keeps the first 64 KiB in memory.
std::unique_ptr<BodySink> makeFileSink(const QString &path, qint64 maxBytes,
                                       std::function<void(const Progress &)> progress);

} // namespace korvel::exchange
