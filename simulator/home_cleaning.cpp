#include "simulator/home_cleaning.h"

#include "simulator/launch_job.h"
#include "simulator/process_list.h"
#include "simulator/program_call.h"

#include <QDeadlineTimer>

#include <csignal>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

bool isAgent(const ProcessInfo &process) {
    const QString &program = process.commandLine.first();
    return program == "korvel-agent"_L1 || program.endsWith("/korvel-agent"_L1);
}

bool isLaunchd(const ProcessInfo &process) {
    return process.commandLine.first() == QString(standInRoot() + "/sbin/launchd"_L1);
}

bool isServer(const ProcessInfo &process) { return process.commandLine.first().endsWith("/korvel-account-server"_L1); }

bool isLasting(const ProcessInfo &process) { return isAgent(process) || isLaunchd(process) || isServer(process); }

// One that runs a script for the stand-in of osascript.
bool isShellOfTool(const ProcessInfo &process) {
    const QStringList &words = process.commandLine;
    return words.first() == "/bin/sh"_L1 && words.value(1) == "-c"_L1 &&
           words.value(2).contains(QString(standInRoot() + u'/'));
}

bool isTool(const ProcessInfo &process) {
    return (process.commandLine.first().startsWith(standInRoot() + u'/') && !isLasting(process)) ||
           isShellOfTool(process);
}

// Signals what `belongs` picks; the number of processes that it picked.
template <class Predicate>
int signalAll(const HomePaths &paths, int number, Predicate belongs) {
    int count = 0;
    for (const ProcessInfo &process : processesOfHome(paths.home)) {
        if (!belongs(process))
            continue;
        ++count;
        ::kill(process.id, number);
    }
    return count;
}

template <class Predicate>
bool endWithin(const HomePaths &paths, int number, int milliseconds, Predicate belongs) {
    const QDeadlineTimer deadline(milliseconds);
    while (signalAll(paths, number, belongs) > 0) {
        if (deadline.hasExpired())
            return false;
        pauseFor(10);
    }
    return true;
}

} // namespace

bool endAllOf(const HomePaths &paths) {
    endWithin(paths, SIGKILL, 2000, isTool); // a tool that waits could load a job later
    for (const QString &label : LaunchJob::labels(paths))
        LaunchJob(paths, label).unload();
    return endWithin(paths, SIGTERM, 2000, isLasting) || endWithin(paths, SIGKILL, 2000, isLasting);
}

} // namespace korvel::sim
