#include "exchange/body_sink.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace korvel::exchange {

namespace {

constexpr qint64 MAX_ASIDE = 1 << 20;
constexpr qsizetype MAX_OTHER_BODY = 64 << 10;

class MemorySink final : public BodySink {
public:
    using BodySink::BodySink;
    bool header(qint64 bytes) override { return accept(bytes); }
    bool body(QByteArrayView bytes, int, qint64) override {
        if (!accept(bytes.size()))
            return false;
        kept.append(bytes);
        return true;
    }
    std::optional<Error> end(int) override { return tooLarge ? std::optional(tooLargeError()) : std::nullopt; }
};

class FileSink final : public BodySink {
public:
    FileSink(const QString &path, qint64 maxBytes, std::function<void(const Progress &)> p)
        : BodySink(maxBytes), file(path), progress(std::move(p)) {}

    bool header(qint64 bytes) override { return (aside += bytes) <= MAX_ASIDE; }

    bool body(QByteArrayView bytes, int status, qint64 expected) override {
        if (status != 200) {
            kept.append(bytes.first(std::min(bytes.size(), MAX_OTHER_BODY - kept.size())));
            return header(bytes.size());
        }
        if ((!file.isOpen() && !open()) || !accept(bytes.size()))
            return false;
        while (!bytes.isEmpty()) { // a short write sets no error; the next one reports it
            const qint64 written = file.write(bytes.data(), bytes.size());
            if (written <= 0) {
                failure = file.errorString();
                return false;
            }
            bytes = bytes.sliced(written);
        }
        progress({.got = total, .expected = expected});
        return true;
    }

    std::optional<Error> end(int status) override {
        if (status == 200 && !tooLarge && failure.isEmpty() && !file.isOpen())
            open(); // an empty body gives an empty file
        file.close();
        if (!failure.isEmpty())
            return Error{ErrorKind::NotSaved, failure};
        return tooLarge ? std::optional(tooLargeError()) : std::nullopt;
    }

private:
    bool open() {
        // Creates a new file, so that an existing file or link of that name is never written through.
        QFile::remove(file.fileName());
        const int fd =
            ::open(QFile::encodeName(file.fileName()).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd < 0)
            failure = qt_error_string(errno);
        return fd >= 0 && file.open(fd, QIODevice::WriteOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
    }

    QFile file;
    std::function<void(const Progress &)> progress;
    QString failure;
    qint64 aside = 0; ///< Bytes of headers and of other responses, not counted towards the file's limit.
};

} // namespace

bool BodySink::accept(qint64 more) {
    total += more;
    tooLarge = tooLarge || total > limit;
    return !tooLarge;
}

Error BodySink::tooLargeError() const {
    return Error{ErrorKind::TooLarge, QStringLiteral("response over %1 bytes").arg(limit)};
}

std::unique_ptr<BodySink> makeMemorySink(qint64 maxBytes) { return std::make_unique<MemorySink>(maxBytes); }

std::unique_ptr<BodySink> makeFileSink(const QString &path, qint64 maxBytes,
                                       std::function<void(const Progress &)> progress) {
    return std::make_unique<FileSink>(path, maxBytes, std::move(progress));
}

} // namespace korvel::exchange
