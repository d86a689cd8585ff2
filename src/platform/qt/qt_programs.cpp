#include "platform/qt/qt_programs.h"

#include "ports/system_tools.h"

#include <QElapsedTimer>
#include <QProcess>
#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr qsizetype MAX_OUTPUT = 512 << 10; // as for a response: the last line may be parsed on the main thread
constexpr int KILL_DELAY_MS = 3000;
/// Polling interval for stop requests: QProcess only waits for the program.
constexpr int STOP_CHECK_INTERVAL_MS = 100;

/// Truncates the output to its last part, from the start of a line.
void keepTail(QByteArray &all, const QByteArray &more) {
    all += more;
    if (all.size() <= MAX_OUTPUT)
        return;
    const qsizetype lineEnd = all.indexOf('\n', all.size() - MAX_OUTPUT / 2);
    all.remove(0, lineEnd < 0 ? all.size() - MAX_OUTPUT / 2 : lineEnd + 1);
}

/// Ends a program on timeout or stop request: terminates it first, kills it after a delay.
class Ending {
public:
    explicit Ending(const ProgramRun &r) : request(r) { clock.start(); }

    /// Performs the step that is due. Returns the time in milliseconds until the next call; -1: at the next event.
    int check(QProcess &process) {
        if (reason == ProgramResult::End::Exited) {
            if (request.stop && request.stop->stopRequested())
                end(process, ProgramResult::End::Stopped);
            else if (request.timeout && left() <= 0)
                end(process, ProgramResult::End::TimedOut);
        } else if (sinceTerminate.elapsed() > KILL_DELAY_MS) {
            process.kill();
        }
        if (request.stop || reason != ProgramResult::End::Exited)
            return STOP_CHECK_INTERVAL_MS;
        constexpr qint64 MAX_WAIT = 60000;
        return request.timeout ? static_cast<int>(std::clamp<qint64>(left(), 1, MAX_WAIT)) : -1;
    }
    ProgramResult::End why() const { return reason; }

private:
    void end(QProcess &process, ProgramResult::End why) {
        reason = why;
        sinceTerminate.start();
        process.terminate();
    }
    qint64 left() const { return request.timeout->count() - clock.elapsed(); }

    const ProgramRun &request;
    ProgramResult::End reason = ProgramResult::End::Exited;
    QElapsedTimer clock;
    QElapsedTimer sinceTerminate;
};

/// Prevents descriptors opened by libraries from being inherited, which would keep their connections open.
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

void collect(QProcess &process, const ProgramRun &request, QByteArray &output) {
    const QByteArray piece = process.readAll();
    if (piece.isEmpty())
        return;
    if (request.onOutput)
        request.onOutput(piece);
    else
        keepTail(output, piece);
}

} // namespace

ProgramResult QtPrograms::run(const ProgramRun &request) {
    ProgramResult result;
    if (request.stop && request.stop->stopRequested()) {
        result.end = ProgramResult::End::Stopped;
        return result;
    }
    QProcess process;
    process.setProgram(isSystemTool(request.executable) ? simulatedRoot + request.executable : request.executable);
    prepare(process, request);
    process.start();
    if (!process.waitForStarted(-1)) {
        result.launchError = process.errorString();
        return result;
    }
    result.launched = true;
    process.write(request.input);
    if (!request.keepInputOpen)
        process.closeWriteChannel();
    Ending ending(request);
    while (process.state() != QProcess::NotRunning) {
        // Reads continuously, so that a full pipe does not block the program and memory stays bounded. A program may
        // close its output and continue; then only its end is awaited.
        if (!process.waitForReadyRead(ending.check(process)) && process.state() != QProcess::NotRunning)
            process.waitForFinished(ending.check(process));
        collect(process, request, result.output);
    }
    collect(process, request, result.output);
    result.end = ending.why();
    if (process.exitStatus() == QProcess::NormalExit && result.end == ProgramResult::End::Exited)
        result.status = process.exitCode();
    return result;
}

} // namespace korvel
