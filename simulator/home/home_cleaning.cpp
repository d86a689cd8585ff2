#include "simulator/home/home_cleaning.h"

#include "simulator/home/processes.h"
#include "simulator/home/program_call.h"
#include "simulator/launchd/launch_job.h"

#include <QDeadlineTimer>
#include <csignal>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

bool isLasting(const QStringList &words) {
    const QString name = words.first().section(u'/', -1);
    return name == "korvel-agent"_L1 || name == "korvel-account-server"_L1 ||
           words.first() == QString(simulatedRoot() + "/sbin/launchd"_L1);
}

/// Also the shell that runs a script for the simulated osascript.
bool isTool(const QStringList &words) {
    const QString place = simulatedRoot() + u'/';
    const bool isShell = words.first() == "/bin/sh"_L1 && words.value(1) == "-c"_L1 && words.value(2).contains(place);
    return isShell || (words.first().startsWith(place) && !isLasting(words));
}

bool endWithin(int milliseconds, const HomePaths &paths, int signal, bool (*belongs)(const QStringList &words)) {
    for (const QDeadlineTimer deadline(milliseconds);; pauseFor(10)) {
        bool found = false;
        for (const ProcessInfo &process : processesOfHome(paths.home))
            if (belongs(process.commandLine)) {
                found = true;
                ::kill(process.id, signal);
            }
        if (!found || deadline.hasExpired())
            return !found;
    }
}

} // namespace

bool endAllOf(const HomePaths &paths) {
    endWithin(2000, paths, SIGKILL, isTool); // a tool that waits could load a job later
    for (const QString &label : LaunchJob::labels(paths))
        LaunchJob(paths, label).unload();
    return endWithin(2000, paths, SIGTERM, isLasting) || endWithin(2000, paths, SIGKILL, isLasting);
}

} // namespace korvel::sim
