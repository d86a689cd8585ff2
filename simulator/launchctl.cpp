#include "simulator/launchctl.h"

#include "simulator/job_file.h"
#include "simulator/launch_job.h"
#include "simulator/tool_fault.h"

#include <map>
#include <optional>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

// launchd's own statuses, as `launchctl error` lists them.
constexpr int NO_SUCH_PROCESS = 3;
constexpr int INPUT_OUTPUT_ERROR = 5;
constexpr int USAGE = 64;
constexpr int NO_SUCH_DOMAIN = 112;
constexpr int NO_SUCH_SERVICE = 113;

QString userDomain() { return u"gui/%1"_s.arg(::getuid()); }

// The job that a service target names; nothing when it is in another domain, or no target.
std::optional<LaunchJob> jobAt(const HomePaths &paths, const QString &target) {
    const QString start = userDomain() + u'/';
    const QString label = target.mid(start.size());
    if (!target.startsWith(start) || !isSafeLabel(label))
        return std::nullopt;
    return LaunchJob(paths, label);
}

ProgramResult noSuchService(const QString &target) {
    return {NO_SUCH_SERVICE, {}, u"Could not find service \"%1\"\n"_s.arg(target)};
}

ProgramResult print(LaunchJob &job, const QString &target) {
    if (!job.isLoaded())
        return noSuchService(target);
    const pid_t process = job.process();
    const QString state = process != 0 ? u"running\n\tpid = %1"_s.arg(process) : u"not running"_s;
    return {0, u"%1 = {\n\tstate = %2\n}\n"_s.arg(target, state)};
}

ProgramResult bootout(LaunchJob &job, const QString &) {
    if (!job.isLoaded())
        return {NO_SUCH_PROCESS, {}, u"Boot-out failed: 3: No such process\n"_s};
    job.unload();
    return {};
}

ProgramResult enable(LaunchJob &job, const QString &) {
    job.setDisabled(false);
    return {};
}

ProgramResult disable(LaunchJob &job, const QString &) {
    job.setDisabled(true);
    return {};
}

ProgramResult kickstart(LaunchJob &job, const QString &target) {
    return job.start(false) ? ProgramResult{} : noSuchService(target);
}

ProgramResult kickstartKilling(LaunchJob &job, const QString &target) {
    return job.start(true) ? ProgramResult{} : noSuchService(target);
}

ProgramResult bootstrap(const HomePaths &paths, const QString &domain, const QString &file) {
    if (domain != userDomain())
        return {NO_SUCH_DOMAIN, {}, u"Could not find domain \"%1\"\n"_s.arg(domain)};
    const auto job = readJobFile(file);
    if (job) {
        LaunchJob place(paths, job->label);
        if (!place.isDisabled() && place.load(file))
            return {};
    }
    return {INPUT_OUTPUT_ERROR, {}, u"Bootstrap failed: 5: Input/output error\n"_s};
}

} // namespace

ProgramResult launchctl(const ProgramCall &call) {
    using OnJob = ProgramResult (*)(LaunchJob &, const QString &target);
    static const std::map<QString, OnJob> onJob{
        {u"print"_s, print},     {u"bootout"_s, bootout},     {u"enable"_s, enable},
        {u"disable"_s, disable}, {u"kickstart"_s, kickstart}, {u"kickstart -k"_s, kickstartKilling},
    };
    const QStringList &arguments = call.arguments;
    if (!arguments.isEmpty())
        if (const auto result = toolFault(call.paths, "launchctl"_L1, arguments.first()))
            return *result;
    if (arguments.size() == 3 && arguments[0] == "bootstrap"_L1)
        return bootstrap(call.paths, arguments[1], arguments[2]);

    const auto known = onJob.find(arguments.mid(0, arguments.size() - 1).join(u' '));
    if (arguments.isEmpty() || known == onJob.end())
        return {USAGE,
                {},
                u"usage: launchctl print|bootout|enable|disable|kickstart [-k] TARGET\n"
                "       launchctl bootstrap DOMAIN JOBFILE\n"_s};
    auto job = jobAt(call.paths, arguments.last());
    if (!job)
        return noSuchService(arguments.last());
    return known->second(*job, arguments.last());
}

} // namespace korvel::sim
