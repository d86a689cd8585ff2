#include "service/agent_control.h"

#include "app/model/situation.h"
#include "ports/system_tools.h"
#include "service/job_state.h"
#include "service/service_notices.h"

#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {
constexpr milliseconds QUIT_TIMEOUT = 30s;
}

AgentControl::AgentControl(TrayState &st, const FixedConfig &f, const Paths &p, const AgentConfig &c,
                           ServiceControl &sv, Programs &pr, Desktop &d, Scheduler &s, Notices &no, Repair &re)
    : state(st), fixed(f), paths(p), config(c), services(sv), programs(pr), desktop(d), scheduler(s), notices(no),
      repair(re) {}

void AgentControl::ensureAgentLoaded(std::function<void()> then) {
    if (!config.readCfg().bound() || !plistExists(paths))
        return then();
    auto bootstrapped = [&sv = services, label = fixed.AGENT_LABEL, plist = paths.agentPlist] {
        return sv.print(label) != ServiceResult::Succeeded && sv.bootstrap(plist) == ServiceResult::Succeeded;
    };
    scheduler.background(bootstrapped, alive.guard([this, then = std::move(then)](bool started) {
        if (started)
            countAsStarting(state.health, scheduler.now());
        then();
    }));
}

void AgentControl::restartAgent(std::function<void()> then) {
    if (!plistExists(paths)) {
        repair.repairService({});
        return then();
    }
    auto restarted = [&sv = services, label = fixed.AGENT_LABEL, plist = paths.agentPlist] {
        sv.enable(label);
        if (const ServiceResult started = sv.bootstrap(plist); started == ServiceResult::Succeeded)
            return started;
        return sv.kickstart(label);
    };
    scheduler.background(restarted, alive.guard([this, then = std::move(then)](ServiceResult) {
        countAsStarting(state.health, scheduler.now());
        then();
    }));
}

void AgentControl::startStoppedAgent(std::function<void()> then) {
    if (state.health.running)
        return then();
    if (!plistExists(paths)) {
        repair.repairService({});
        return then();
    }
    auto started = [&sv = services, label = fixed.AGENT_LABEL, plist = paths.agentPlist] {
        if (sv.print(label) == ServiceResult::Succeeded)
            return false;
        sv.enable(label);
        return sv.bootstrap(plist) == ServiceResult::Succeeded;
    };
    scheduler.background(started, alive.guard([this, then = std::move(then)](bool isNew) {
        if (isNew)
            countAsStarting(state.health, scheduler.now());
        then();
    }));
}

void AgentControl::quitAll() {
    if (std::exchange(quitting, true))
        return;
    notices.showHUD(quittingNotice());
    // A hanging service manager must not block quitting.
    quitAnyway = scheduler.after(QUIT_TIMEOUT, [this] { desktop.terminate(); });
    auto stopped = [&sv = services, &pr = programs, label = fixed.AGENT_LABEL] {
        sv.bootout(label);
        // Agents started outside launchd, from the bundle or as a script.
        for (const QString &pattern : {u"Korvel.app/Contents/Resources/korvel-agent"_s, u"korvel-agent.mjs run"_s})
            pr.run({.executable = PKILL, .arguments = {u"-f"_s, pattern}, .timeout = SHORT_TOOL_TIMEOUT});
        return true;
    };
    scheduler.background(stopped, alive.guard([this](bool) {
        // The tray's own job, so that it does not stay loaded. This may end the process.
        scheduler.background([&sv = services] { return sv.bootout(u"com.korvel.tray"_s); },
                             alive.guard([this](ServiceResult) { desktop.terminate(); }));
    }));
}

void AgentControl::openLog() {
    if (QFileInfo::exists(paths.logFile))
        desktop.openUrl(QUrl::fromLocalFile(paths.logFile).toString(QUrl::FullyEncoded));
    else
        notices.showHUD(noLogNotice());
}

} // namespace korvel
