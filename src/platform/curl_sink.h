#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QFile>
#include <functional>
#include <optional>

namespace korvel {

/// Where the bytes of an answer go, and how many may come. Once it refuses some, the transfer ends.
class CurlSink {
public:
    explicit CurlSink(qint64 maxBytes) : limit(maxBytes) {}
    virtual ~CurlSink() = default;
    /// Bytes of a header. False: too many.
    virtual bool header(qint64 bytes) = 0;
    /// Bytes of the body of an answer of that status; `expected` in all, 0: not known. False: not taken.
    virtual bool body(QByteArrayView bytes, int status, qint64 expected) = 0;
    /// The answer is through, or will never be. Why it was refused; none: it was not.
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
class MemorySink final : public CurlSink {
public:
    using CurlSink::CurlSink;
    bool header(qint64 bytes) override { return accept(bytes); }
    bool body(QByteArrayView bytes, int status, qint64 expected) override;
    std::optional<Error> end(int status) override;
};

/// Writes the body of an answer of status 200 to a new private file as it comes; keeps the beginning of any other.
class FileSink final : public CurlSink {
public:
    FileSink(QString path, qint64 maxBytes, std::function<void(qint64 got, qint64 expected)> progress);
    bool header(qint64 bytes) override;
    bool body(QByteArrayView bytes, int status, qint64 expected) override;
    std::optional<Error> end(int status) override;

private:
    bool open();
    bool fail();

    QFile file;
    std::function<void(qint64 got, qint64 expected)> progress;
    QString failure;
    qint64 aside = 0; ///< Bytes of headers and of other answers, which do not count as the package's.
};

} // namespace korvel
