#include "simulator/job_supervisor.h"

#include "simulator/files.h"
#include "simulator/record_lock.h"
#include "simulator/scenario.h"
#include "simulator/unix_signals.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <chrono>
#include <csignal>

namespace korvel::sim {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int DEFAULT_THROTTLE_MS = 500;
constexpr auto BEFORE_FORCE = 2s; // between SIGTERM and SIGKILL

void redirect(QProcess &program, const QString &outputPath, const QString &errorPath) {
    for (const QString &path : {outputPath, errorPath})
        if (!path.isEmpty())
            QDir().mkpath(QFileInfo(path).path());
    const QString null = QProcess::nullDevice();
    program.setStandardInputFile(null);
    program.setStandardOutputFile(outputPath.isEmpty() ? null : outputPath, QIODevice::Append);
    program.setStandardErrorFile(errorPath.isEmpty() ? null : errorPath, QIODevice::Append);
}

} // namespace

JobSupervisor::JobSupervisor(HomePaths paths, JobFile job)
    : paths(std::move(paths)), job(std::move(job)), place(this->paths, this->job.label),
      watch(this->paths, place.lockFile(), [this] { finish(); }) {
    configure();
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

void JobSupervisor::configure() {
    program.setProgram(job.programArguments.first());
    program.setArguments(job.programArguments.mid(1));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (auto variable = job.environment.begin(); variable != job.environment.end(); ++variable)
        environment.insert(variable.key(), variable.value());
    program.setProcessEnvironment(environment);
}

void JobSupervisor::begin() {
    if (job.runAtLoad || job.keepAlive)
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
    redirect(program, job.outputPath, job.errorPath); // log folders may have been removed meanwhile
    ++starts;
    program.start();
    program.waitForStarted();
    writeState();
}

void JobSupervisor::endProgram() {
    program.terminate();
    force.start(BEFORE_FORCE);
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
    else if (job.keepAlive)
        restart.start(milliseconds(Scenario::read(paths).section("launchd"_L1), "throttleMs"_L1, DEFAULT_THROTTLE_MS));
}

void JobSupervisor::writeState() {
    if (!QFile::exists(place.lockFile()))
        return; // a home that is gone must not come back
    replaceFile(place.stateFile(), QJsonDocument(jobState(program.processId(), starts)).toJson());
}

int superviseJob(const ProgramCall &call) {
    if (call.arguments.size() != 2)
        return 2;
    const auto job = readJobFile(call.arguments[1]);
    if (!job || job->label != call.arguments[0])
        return 1;
    JobSupervisor supervisor(call.paths, *job);
    const UnixSignals signalHandling({SIGTERM, SIGUSR1, SIGUSR2}, [&supervisor](int number) {
        if (number == SIGTERM)
            supervisor.finish();
        else
            supervisor.start(number == SIGUSR1);
    });
    // Only now may others see the job as loaded: their signals are understood. Held until this process ends.
    if (takeRecordLock(LaunchJob(call.paths, job->label).lockFile()) < 0)
        return 1;
    supervisor.begin();
    return QCoreApplication::exec();
}

} // namespace korvel::sim
