#include "platform/qt_programs.h"

#include "platform/system_tools.h"

#include <QElapsedTimer>
#include <QProcess>
#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr qsizetype MAX_OUTPUT = 8 << 20;
constexpr int KILL_AFTER_MS = 3000;

/// Keeps the end of an output that is too long, from a line's beginning on.
void keepTail(QByteArray &all, const QByteArray &more) {
    all += more;
    if (all.size() <= MAX_OUTPUT)
        return;
    const qsizetype lineEnd = all.indexOf('\n', all.size() - MAX_OUTPUT / 2);
    all.remove(0, lineEnd < 0 ? all.size() - MAX_OUTPUT / 2 : lineEnd + 1);
}

/// Asks the program to end when its time is over, and ends it when it does not.
class TimeLimit {
public:
    explicit TimeLimit(std::optional<std::chrono::milliseconds> l) : limit(l) { clock.start(); }

    /// Milliseconds that may be waited for the next event; -1: for ever.
    int apply(QProcess &process) {
        if (!limit)
            return -1;
        const qint64 left = limit->count() - clock.elapsed();
        if (left > 0)
            return static_cast<int>(std::min<qint64>(left, 60000));
        if (asked && clock.elapsed() > limit->count() + KILL_AFTER_MS)
            process.kill();
        else if (!std::exchange(asked, true))
            process.terminate();
        return 100;
    }

private:
    std::optional<std::chrono::milliseconds> limit;
    QElapsedTimer clock;
    bool asked = false;
};

/// Libraries open descriptors that a program would inherit; a long-lived one would keep their connections open.
void closeInherited() {
    constexpr int FIRST_AFTER_STANDARD_STREAMS = 3;
    for (int descriptor = FIRST_AFTER_STANDARD_STREAMS; descriptor < 256; ++descriptor)
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

QProcessEnvironment environmentOf(const ProgramRun &request) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (request.surroundings == ProgramRun::Surroundings::Own) {
        const QStringList kept{u"HOME"_s, u"USER"_s, u"LOGNAME"_s, u"__CF_USER_TEXT_ENCODING"_s};
        for (const QString &name : environment.keys())
            if (!kept.contains(name))
                environment.remove(name);
        environment.insert(u"PATH"_s, u"/usr/bin:/bin:/usr/sbin:/sbin"_s);
    }
    for (const auto &[name, value] : request.extraEnvironment)
        environment.insert(name, value);
    return environment;
}

void prepare(QProcess &process, const ProgramRun &request) {
    process.setChildProcessModifier([ownSession = request.surroundings == ProgramRun::Surroundings::Own] {
        closeInherited();
        if (ownSession)
            ::setsid();
    });
    process.setArguments(request.arguments);
    if (request.collect == ProgramRun::Collect::StandardOutput) {
        process.setStandardErrorFile(QProcess::nullDevice());
        process.setReadChannel(QProcess::StandardOutput);
    } else {
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setReadChannel(QProcess::StandardError);
    }
    if (request.surroundings == ProgramRun::Surroundings::Own || !request.extraEnvironment.isEmpty())
        process.setProcessEnvironment(environmentOf(request));
}

} // namespace

ProgramResult QtPrograms::run(const ProgramRun &request) {
    ProgramResult result;
    QProcess process;
    process.setProgram(isSystemTool(request.executable) ? standInRoot + request.executable : request.executable);
    prepare(process, request);
    process.start();
    if (!process.waitForStarted(-1)) {
        result.launchError = process.errorString();
        return result;
    }
    result.launched = true;
    process.write(request.input);
    process.closeWriteChannel();
    TimeLimit limit(request.timeout);
    while (process.state() != QProcess::NotRunning) {
        // Read as it comes, so that a chatty program neither blocks on a full pipe nor fills the memory. One that
        // closed its output runs on: then only its end is waited for.
        if (!process.waitForReadyRead(limit.apply(process)) && process.state() != QProcess::NotRunning)
            process.waitForFinished(limit.apply(process));
        keepTail(result.output, process.readAll());
    }
    keepTail(result.output, process.readAll());
    if (process.exitStatus() == QProcess::NormalExit)
        result.status = process.exitCode();
    return result;
}

} // namespace korvel
