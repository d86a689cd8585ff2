#include "simulator/program_call.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QThread>

namespace korvel::sim {

int runProgram(const QString &program, const QStringList &arguments) {
    const int status = QProcess::execute(program, arguments);
    return status < 0 ? 127 : status;
}

void pauseFor(int milliseconds) { QThread::msleep(static_cast<unsigned long>(milliseconds)); }

bool waitUntil(const std::function<bool()> &done) {
    constexpr int PATIENCE_MS = 10'000;
    const QDeadlineTimer deadline(PATIENCE_MS);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        pauseFor(5);
    }
    return true;
}

} // namespace korvel::sim
