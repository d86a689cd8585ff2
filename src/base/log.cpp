#include "base/log.h"

#include "base/plain_text.h"

#include <QByteArray>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace korvel {

namespace {
std::function<void(const QString &)> secondSink;
}

void setLogSink(std::function<void(const QString &)> sink) { secondSink = std::move(sink); }

void log(const QString &line) {
    const QString plain = singleLine(line, 4000);
    const QByteArray bytes = plain.toUtf8() + '\n';
    // One write per line, so lines from several threads do not mix. A full disk or a closed descriptor is not an error.
    if (::write(STDERR_FILENO, bytes.constData(), static_cast<size_t>(bytes.size())) < 0) {
    }
    if (secondSink)
        secondSink(plain);
}

} // namespace korvel
