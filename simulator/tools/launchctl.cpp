#include "simulator/tools/tools.h"

#include "simulator/launchd/job_file.h"
#include "simulator/launchd/launch_job.h"

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

// launchd's statuses, as `launchctl error` lists them.
constexpr int NO_SUCH_PROCESS = 3;
constexpr int INPUT_OUTPUT_ERROR = 5;
constexpr int USAGE = 64;
constexpr int NO_SUCH_DOMAIN = 112;
constexpr int NO_SUCH_SERVICE = 113;

ProgramResult print(const LaunchJob &job, const QString &target) {
    const pid_t process = job.process();
    const QString state = process != 0 ? u"running\n\tpid = %1"_s.arg(process) : u"not running"_s;
    return {0, u"%1 = {\n\tstate = %2\n}\n"_s.arg(target, state)};
}

ProgramResult bootstrap(const HomePaths &paths, const QString &file) {
    const QJsonObject job = readJobFile(file);
    if (LaunchJob place(paths, job["Label"_L1].toString()); !job.isEmpty() && !place.isDisabled() && place.load(file))
        return {};
    return {INPUT_OUTPUT_ERROR, {}, u"Bootstrap failed: 5: Input/output error\n"_s};
}

/// Runs a subcommand on one job, such as "kickstart -k".
ProgramResult onJob(const QString &subcommand, const QString &target, LaunchJob job) {
    if (subcommand == "enable"_L1 || subcommand == "disable"_L1) {
        job.setDisabled(subcommand == "disable"_L1);
        return {};
    }
    if (!job.isLoaded() && subcommand == "bootout"_L1)
        return {NO_SUCH_PROCESS, {}, u"Boot-out failed: 3: No such process\n"_s};
    if (!job.isLoaded())
        return {NO_SUCH_SERVICE, {}, u"Could not find service \"%1\"\n"_s.arg(target)};
    if (subcommand == "print"_L1)
        return print(job, target);
    subcommand == "bootout"_L1 ? job.unload() : job.start(subcommand.endsWith("-k"_L1));
    return {};
}

} // namespace

ProgramResult launchctl(const ProgramCall &call) {
    static const QStringList onJobs{u"print"_s,   u"bootout"_s,   u"enable"_s,
                                    u"disable"_s, u"kickstart"_s, u"kickstart -k"_s};
    const QStringList &words = call.arguments;
    if (const auto result = toolFault(call.paths, "launchctl"_L1, words.value(0)))
        return *result;
    const QString domain = u"gui/%1"_s.arg(::getuid());
    if (words.size() == 3 && words[0] == "bootstrap"_L1)
        return words[1] == domain
                   ? bootstrap(call.paths, words[2])
                   : ProgramResult{NO_SUCH_DOMAIN, {}, u"Could not find domain \"%1\"\n"_s.arg(words[1])};
    const QString subcommand = words.mid(0, words.size() - 1).join(u' '), target = words.value(words.size() - 1);
    if (!onJobs.contains(subcommand))
        return {USAGE, {}, u"usage: launchctl %1|bootstrap TARGET [JOBFILE]\n"_s.arg(onJobs.join(u'|'))};
    const QString label = target.mid(domain.size() + 1);
    if (!target.startsWith(domain + u'/') || !isSafeLabel(label))
        return {NO_SUCH_SERVICE, {}, u"Could not find service \"%1\"\n"_s.arg(target)};
    return onJob(subcommand, target, LaunchJob(call.paths, label));
}

} // namespace korvel::sim
