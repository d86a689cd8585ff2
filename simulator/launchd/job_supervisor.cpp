#include "simulator/launchd/job_supervisor.h"

#include "base/unix_process.h"
#include "simulator/home/files.h"
#include "simulator/home/home_locks.h"
#include "simulator/home/scenario.h"
#include "simulator/launchd/job_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QVariant>
#include <chrono>
#include <csignal>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int DEFAULT_THROTTLE_MS = 500;
constexpr auto KILL_DELAY = 2s; // after SIGTERM

/// The file for an output. Creates its folder, which may have been removed.
QString outputFile(const QJsonValue &path) {
    if (path.toString().isEmpty())
        return QProcess::nullDevice();
    QDir().mkpath(QFileInfo(path.toString()).path());
    return path.toString();
}

} // namespace

JobSupervisor::JobSupervisor(const HomePaths &home, const QJsonObject &jobFile)
    : paths(home), job(jobFile), place(paths, job["Label"_L1].toString()),
      watch(paths, place.lockFile(), [this] { finish(); }) {
    const QStringList words = job["ProgramArguments"_L1].toVariant().toStringList();
    program.setProgram(words.value(0));
    program.setArguments(words.mid(1));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QJsonObject variables = job["EnvironmentVariables"_L1].toObject();
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
        environment.insert(variable.key(), variable.value().toString());
    program.setProcessEnvironment(environment);
    program.setStandardInputFile(QProcess::nullDevice());
    restart.setSingleShot(true);
    force.setSingleShot(true);
    QObject::connect(&program, &QProcess::finished, &program, [this] { onEnded(); });
    QObject::connect(&program, &QProcess::errorOccurred, &program, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            onEnded();
    });
    QObject::connect(&restart, &QTimer::timeout, &program, [this] { launch(); });
    QObject::connect(&force, &QTimer::timeout, &program, [this] { program.kill(); });
}

void JobSupervisor::begin() {
    if (job["RunAtLoad"_L1].toBool() || job["KeepAlive"_L1].toBool())
        launch();
    else
        writeState();
}

void JobSupervisor::start(bool kill) {
    if (after == After::Leave)
        return;
    if (program.state() == QProcess::NotRunning) {
        launch();
    } else if (kill) {
        after = After::StartAgain;
        endProgram();
    }
}

void JobSupervisor::finish() {
    after = After::Leave;
    restart.stop();
    if (program.state() == QProcess::NotRunning)
        QCoreApplication::exit(0);
    else
        endProgram();
}

void JobSupervisor::launch() {
    restart.stop();
    program.setStandardOutputFile(outputFile(job["StandardOutPath"_L1]), QIODevice::Append);
    program.setStandardErrorFile(outputFile(job["StandardErrorPath"_L1]), QIODevice::Append);
    ++starts;
    program.start();
    program.waitForStarted();
    writeState();
}

void JobSupervisor::endProgram() {
    program.terminate();
    force.start(KILL_DELAY);
}

void JobSupervisor::onEnded() {
    force.stop();
    writeState();
    if (after == After::Leave) {
        QCoreApplication::exit(0);
        return;
    }
    if (std::exchange(after, After::KeepAlive) == After::StartAgain)
        restart.start(0ms);
    else if (job["KeepAlive"_L1].toBool())
        restart.start(milliseconds(Scenario(paths).section("launchd"_L1), "throttleMs"_L1, DEFAULT_THROTTLE_MS));
}

void JobSupervisor::writeState() {
    if (!QFile::exists(place.lockFile()))
        return; // must not create a removed home again
    replaceFile(place.stateFile(),
                {{u"supervisor"_s, qint64(::getpid())}, {u"process"_s, program.processId()}, {u"starts"_s, starts}});
}

int superviseJob(const ProgramCall &call) {
    const QJsonObject job = readJobFile(call.arguments.value(1));
    const QString label = job["Label"_L1].toString();
    if (job.isEmpty() || label != call.arguments.value(0))
        return 1;
    JobSupervisor supervisor(call.paths, job);
    const UnixSignals signalHandling({SIGTERM, SIGUSR1, SIGUSR2}, [&supervisor](int number) {
        if (number == SIGTERM)
            supervisor.finish();
        else
            supervisor.start(number == SIGUSR1);
    });
    // Locks last, because a locked job counts as loaded and must understand signals. The lock is held until this
    // process ends.
    if (takeRecordLock(LaunchJob(call.paths, label).lockFile()) < 0)
        return 1;
    supervisor.begin();
    return QCoreApplication::exec();
}

} // namespace korvel::sim
