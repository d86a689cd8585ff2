#include "simulator/launch_job.h"

#include "simulator/files.h"
#include "simulator/program_call.h"
#include "simulator/record_lock.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

bool isRunning(pid_t process) { return ::kill(process, 0) == 0 || errno != ESRCH; }

} // namespace

LaunchJob::LaunchJob(const HomePaths &paths, QString label)
    : label(std::move(label)), folder(paths.jobs() + u'/' + this->label) {}

QStringList LaunchJob::labels(const HomePaths &paths) {
    return QDir(paths.jobs()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

pid_t LaunchJob::supervisor() const { return recordLockHolder(lockFile()); }

QJsonObject LaunchJob::state() const {
    const QJsonObject written = readObject(stateFile()).value_or(QJsonObject{});
    const pid_t current = supervisor();
    return current != 0 && written.value("supervisor"_L1).toInteger() == current ? written : QJsonObject{};
}

pid_t LaunchJob::process() const { return pid_t(state().value("process"_L1).toInteger()); }

bool LaunchJob::isDisabled() const { return QFile::exists(folder + "/disabled"_L1); }

void LaunchJob::setDisabled(bool disabled) {
    const QString mark = folder + "/disabled"_L1;
    if (disabled)
        replaceFile(mark, {});
    else
        QFile::remove(mark);
}

bool LaunchJob::load(const QString &jobFile) {
    if (isLoaded() || !QDir().mkpath(folder))
        return false;
    QProcess launchd;
    launchd.setProgram(standInRoot() + "/sbin/launchd"_L1);
    launchd.setArguments({label, jobFile});
    // The caller's pipes must not stay open in it.
    launchd.setStandardInputFile(QProcess::nullDevice());
    launchd.setStandardOutputFile(QProcess::nullDevice());
    launchd.setStandardErrorFile(folder + "/supervisor.log"_L1, QIODevice::Append);
    qint64 started = 0;
    if (!launchd.startDetached(&started))
        return false;
    const auto settled = [&] { return !state().isEmpty() || !isRunning(pid_t(started)); };
    return waitUntil(settled) && supervisor() == started;
}

bool LaunchJob::unload() {
    const pid_t process = supervisor();
    if (process == 0)
        return false;
    ::kill(process, SIGTERM);
    return waitUntil([&] { return supervisor() != process; });
}

bool LaunchJob::start(bool kill) {
    const pid_t process = supervisor();
    if (process == 0)
        return false;
    const QJsonObject before = state();
    if (!kill && before.value("process"_L1).toInteger() != 0)
        return true;
    ::kill(process, kill ? SIGUSR1 : SIGUSR2);
    const int starts = before.value("starts"_L1).toInt();
    return waitUntil([&] { return state().value("starts"_L1).toInt() > starts || supervisor() != process; });
}

QJsonObject jobState(qint64 process, int starts) {
    return {{u"supervisor"_s, qint64(::getpid())}, {u"process"_s, process}, {u"starts"_s, starts}};
}

} // namespace korvel::sim
