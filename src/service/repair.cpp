#include "service/repair.h"

#include "app/model/situation.h"
#include "base/log.h"
#include "service/job_state.h"
#include "service/service_notices.h"

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

/// A hanging installation must not keep the status at "repairing" indefinitely.
constexpr milliseconds INSTALL_TIMEOUT = 10min;

/// Runs one of the agent's installation commands. Logs a failure.
bool install(Programs &programs, const QString &agent, const QString &what) {
    const ProgramResult result = programs.run({.executable = agent, .arguments = {what}, .timeout = INSTALL_TIMEOUT});
    if (result.status != 0)
        log(u"[repair] %1 退出码 %2:%3"_s.arg(what)
                .arg(result.status)
                .arg(result.launched ? QString::fromUtf8(result.output) : result.launchError));
    return result.status == 0;
}

} // namespace

Repair::Repair(TrayState &st, const FixedConfig &f, const Paths &p, const AgentCommand &c, Programs &pr, Scheduler &s,
               Notices &no, Poller &po, Renderer &re)
    : state(st), fixed(f), paths(p), command(c), programs(pr), scheduler(s), notices(no), poller(po), renderer(re) {}

void Repair::repairService(std::function<void()> then) {
    const auto finish = [then = std::move(then)] {
        if (then)
            then();
    };
    if (state.service.repairing)
        return finish();
    const auto agent = command.bundledAgent();
    if (!agent) {
        state.service.repairFailed = true;
        renderer.stateChanged();
        return finish();
    }
    state.service.repairing = true;
    state.service.repairFailed = false;
    renderer.stateChanged();
    auto installed = [&pr = programs, agent = *agent] {
        // A failure here is not fatal: the tray needs only the job.
        install(pr, agent, u"install-hooks"_s);
        return install(pr, agent, u"install-service"_s);
    };
    scheduler.background(installed, alive.guard([this, finish](bool good) { repaired(good, finish); }));
}

void Repair::repaired(bool good, std::function<void()> then) {
    state.service.repairing = false;
    state.service.repairFailed = !good;
    if (good)
        expectNewJob(state.health, scheduler.now());
    poller.poll(std::move(then));
}

void Repair::repairClicked() {
    if (state.service.repairing) // the running repair serves this click
        return;
    repairService(
        [this] { notices.showHUD(plistExists(paths) ? repairedNotice() : repairFailedNotice(fixed.SITE_URL)); });
}

} // namespace korvel
