#include "platform/curl_sink.h"

#include <algorithm>
#include <fcntl.h>

namespace korvel {

namespace {
constexpr qint64 MOST_ASIDE = 1 << 20;
constexpr qsizetype LONGEST_OTHER_BODY = 64 << 10;
} // namespace

bool CurlSink::accept(qint64 more) {
    total += more;
    tooLarge = tooLarge || total > limit;
    return !tooLarge;
}

Error CurlSink::tooLargeError() const {
    return Error{ErrorKind::TooLarge, QStringLiteral("answer over %1 bytes").arg(limit)};
}

bool MemorySink::body(QByteArrayView bytes, int, qint64) {
    if (!accept(bytes.size()))
        return false;
    kept.append(bytes);
    return true;
}

std::optional<Error> MemorySink::end(int) { return tooLarge ? std::optional(tooLargeError()) : std::nullopt; }

FileSink::FileSink(QString path, qint64 maxBytes, std::function<void(qint64 got, qint64 expected)> p)
    : CurlSink(maxBytes), file(std::move(path)), progress(std::move(p)) {}

bool FileSink::header(qint64 bytes) { return (aside += bytes) <= MOST_ASIDE; }

bool FileSink::body(QByteArrayView bytes, int status, qint64 expected) {
    if (status != 200) {
        kept.append(bytes.first(std::min(bytes.size(), LONGEST_OTHER_BODY - kept.size())));
        return header(bytes.size());
    }
    if ((!file.isOpen() && !open()) || !accept(bytes.size()))
        return false;
    while (!bytes.isEmpty()) { // only a write that writes nothing knows why
        const qint64 written = file.write(bytes.data(), bytes.size());
        if (written <= 0)
            return fail();
        bytes = bytes.sliced(written);
    }
    progress(total, expected);
    return true;
}

bool FileSink::open() {
    // A new file: whoever could have put one of that name there, or a link, has no part in it.
    QFile::remove(file.fileName());
    const int fd =
        ::open(QFile::encodeName(file.fileName()).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0)
        failure = qt_error_string(errno);
    return fd >= 0 && file.open(fd, QIODevice::WriteOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
}

bool FileSink::fail() {
    failure = file.errorString();
    return false;
}

std::optional<Error> FileSink::end(int status) {
    if (status == 200 && !tooLarge && failure.isEmpty() && !file.isOpen())
        open(); // an empty body is a file too
    file.close();
    if (!failure.isEmpty())
        return Error{ErrorKind::NotSaved, failure};
    return tooLarge ? std::optional(tooLargeError()) : std::nullopt;
}

} // namespace korvel
