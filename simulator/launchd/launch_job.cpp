#include "simulator/launchd/launch_job.h"

#include "simulator/home/files.h"
#include "simulator/home/home_locks.h"
#include "simulator/home/program_call.h"

#include <QDir>
#include <QFile>
#include <csignal>

namespace korvel::sim {

using namespace Qt::StringLiterals;

LaunchJob::LaunchJob(const HomePaths &paths, QString l) : label(std::move(l)), folder(paths.jobs() + u'/' + label) {}

QStringList LaunchJob::labels(const HomePaths &paths) {
    return QDir(paths.jobs()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

pid_t LaunchJob::supervisor() const { return recordLockHolder(lockFile()); }

QJsonObject LaunchJob::state() const {
    const QJsonObject written = readObject(stateFile());
    const pid_t current = supervisor();
    return current != 0 && written.value("supervisor"_L1).toInteger() == current ? written : QJsonObject();
}

pid_t LaunchJob::process() const { return pid_t(state().value("process"_L1).toInteger()); }

bool LaunchJob::isDisabled() const { return QFile::exists(folder + "/disabled"_L1); }

void LaunchJob::setDisabled(bool disabled) {
    const QString mark = folder + "/disabled"_L1;
    if (disabled)
        replaceFile(mark, QByteArray());
    else
        QFile::remove(mark);
}

bool LaunchJob::load(const QString &jobFile) {
    if (isLoaded())
        return false;
    const pid_t started = startLasting(u"/sbin/launchd"_s, {label, jobFile}, QProcessEnvironment::systemEnvironment(),
                                       folder + "/supervisor.log"_L1);
    return started != 0 && waitUntil([&] { return !state().isEmpty() || !isRunning(started); }) &&
           supervisor() == started;
}

bool LaunchJob::unload() {
    const pid_t process = supervisor();
    return process != 0 && ::kill(process, SIGTERM) == 0 && waitUntil([&] { return supervisor() != process; });
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

} // namespace korvel::sim
