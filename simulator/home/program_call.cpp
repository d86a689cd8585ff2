#include "simulator/home/program_call.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <cerrno>
#include <csignal>

namespace korvel::sim {

int runProgram(const QString &program, const QStringList &arguments) {
    const int status = QProcess::execute(program, arguments);
    return status < 0 ? 127 : status;
}

pid_t startLasting(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment,
                   const QString &log) {
    QDir().mkpath(QFileInfo(log).path());
    QProcess process;
    process.setProgram(simulatedRoot() + program);
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(log, QIODevice::Append);
    qint64 started = 0;
    return process.startDetached(&started) ? pid_t(started) : 0;
}

bool isRunning(pid_t process) { return ::kill(process, 0) == 0 || errno != ESRCH; }

void pauseFor(int milliseconds) { QThread::msleep(static_cast<unsigned long>(milliseconds)); }

bool waitUntil(const std::function<bool()> &done) {
    const QDeadlineTimer deadline(10'000);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        pauseFor(5);
    }
    return true;
}

} // namespace korvel::sim
