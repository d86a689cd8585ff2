#pragma once

#include "exchange/messages.h"

#include <functional>
#include <memory>

namespace korvel::exchange {

/// Where the bytes of a response go, and how many may come. Once it refuses some, the exchange ends.
class BodySink {
public:
    explicit BodySink(qint64 maxBytes) : limit(maxBytes) {}
    virtual ~BodySink() = default;
    /// Bytes of a header. False: too many.
    virtual bool header(qint64 bytes) = 0;
    /// Bytes of the body of a response of that status; `expected` in all, 0: not known. False: not taken.
    virtual bool body(QByteArrayView bytes, int status, qint64 expected) = 0;
    /// The response is through, or will never be. Why it was refused; none: it was not.
    virtual std::optional<Error> end(int status) = 0;
    /// What is kept in memory.
    QByteArray takeBody() { return std::move(kept); }

protected:
    /// Whether so many more bytes may come.
    bool accept(qint64 more);
    Error tooLargeError() const;

    const qint64 limit;
    qint64 total = 0;
    bool tooLarge = false;
    QByteArray kept;
};

/// Keeps the whole body in memory; the limit counts headers too.
std::unique_ptr<BodySink> makeMemorySink(qint64 maxBytes);

/// Writes the body of a response of status 200 to a new private file as it comes, in place of what is there; keeps the
/// first 64 KiB of any other.
std::unique_ptr<BodySink> makeFileSink(const QString &path, qint64 maxBytes,
                                       std::function<void(const Progress &)> progress);

} // namespace korvel::exchange
