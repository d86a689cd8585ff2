// korvel-exchange: performs one task for the tray and exits. Reads one line of JSON from standard input and prints JSON
// lines; the last one is the result (messages.h). Exits at once at the end of standard input, which means that the tray
// has exited.

#include "exchange/ed25519.h"
#include "exchange/limits.h"
#include "exchange/sha256.h"
#include "exchange/system_network.h"

#include <QElapsedTimer>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <thread>
#include <unistd.h>

using namespace korvel;
using namespace korvel::exchange;

namespace {

constexpr qint64 PROGRESS_INTERVAL = 100; // milliseconds

/// Reads once; returns 0 at end of file.
size_t readSome(char *buffer, size_t size) {
    ssize_t got = 0;
    do
        got = ::read(STDIN_FILENO, buffer, size);
    while (got < 0 && errno == EINTR);
    return got > 0 ? static_cast<size_t>(got) : 0;
}

/// The first line of standard input; empty if it is too long.
QByteArray readTask() {
    QByteArray line;
    char buffer[4096];
    while (!line.contains('\n')) {
        const size_t got = readSome(buffer, sizeof buffer);
        if (got == 0)
            ::_exit(EXIT_FAILURE);
        line.append(buffer, static_cast<qsizetype>(got));
        if (line.size() > MAX_TASK)
            return {};
    }
    return line;
}

void endWithStandardInput() {
    char buffer[64];
    while (readSome(buffer, sizeof buffer) > 0) {
    }
    ::_exit(EXIT_FAILURE);
}

void print(const Line &line) {
    const QByteArray text = toJson(line);
    for (qsizetype written = 0; written < text.size();) {
        const ssize_t n =
            ::write(STDOUT_FILENO, text.constData() + written, static_cast<size_t>(text.size() - written));
        if (n < 0 && errno != EINTR)
            ::_exit(EXIT_FAILURE);
        written += std::max<ssize_t>(n, 0);
    }
}

/// Converts a result to its output line.
template <class Value>
Line lineOf(Result<Value> result) {
    return result ? Line(std::move(result.value())) : Line(result.error());
}

Line perform(const HttpTask &task) {
    QElapsedTimer sinceLast;
    return lineOf(run(task, systemNetwork(), [&sinceLast](const Progress &progress) {
        if (sinceLast.isValid() && sinceLast.elapsed() < PROGRESS_INTERVAL)
            return;
        sinceLast.start();
        print(progress);
    }));
}

Line perform(const HashTask &task) {
    const auto sha = sha256File(task.file);
    return sha ? Line(Hash{*sha}) : Line(Error{ErrorKind::UnreadableResponse, QStringLiteral("no readable file")});
}

Line perform(const SignatureProof &proof) { return Verdict{ed25519Valid(proof)}; }

} // namespace

int main() {
    giveUpRights();
    std::signal(SIGPIPE, SIG_IGN); // connections may close at any time
    std::signal(SIGXFSZ, SIG_IGN); // a file size limit then appears as a failed write
    const auto task = parseTask(readTask());
    std::thread(endWithStandardInput).detach();
    print(task ? std::visit([](const auto &t) { return perform(t); }, *task)
               : Line(Error{ErrorKind::InvalidRequest, QStringLiteral("no task")}));
    ::_exit(EXIT_SUCCESS); // skips the thread that blocks on standard input
}
