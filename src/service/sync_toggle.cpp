#include "service/sync_toggle.h"

#include "app/model/situation.h"
#include "app/model/wording.h"
#include "service/job_state.h"

namespace korvel {

namespace {

constexpr auto GONE_TIMEOUT = 6s;
constexpr milliseconds LOOKUP_INTERVAL = 300ms;
constexpr int RESUME_ATTEMPTS = 2; // bootstrap can fail for some seconds after a bootout
constexpr milliseconds RESUME_RETRY_DELAY = 1500ms;
constexpr milliseconds POLL_DELAY = 900ms;

} // namespace

ToggleDirection toggleDirection(const HealthState &health) {
    const bool wasRunning = health.running || health.jobLoaded == true;
    return wasRunning ? ToggleDirection::Pause : ToggleDirection::Resume;
}

Notice toggleNotice(ToggleDirection direction, ServiceResult lookup, bool running, const QString &statusLine) {
    if (direction == ToggleDirection::Pause) {
        if (lookup != ServiceResult::Failed) // a pause counts only once the job is known to be unloaded
            return {.text = L(u"无法暂停同步，请重试", u"Couldn't pause sync. Try again."),
                    .secs = Seconds(4),
                    .error = true};
        return {.text = L(u"⏻ 已暂停同步，手机将无法看到这台电脑",
                          u"⏻ Sync paused. Your phone can't see this Mac."),
                .secs = Seconds(2.4)};
    }
    if (lookup == ServiceResult::Failed || (lookup == ServiceResult::Unknown && !running))
        return {.text = L(u"Korvel 后台服务未能启动。请在「系统设置 › 通用 › 登录项」中允许 Korvel "
                          u"在后台运行，然后点击「恢复同步」",
                          u"Korvel couldn't start. Allow it in System Settings › General › Login Items, then choose "
                          u"Resume Sync."),
                .secs = Seconds(10),
                .error = true};
    return {.text = running ? statusLine : L(u"● 已恢复同步，正在连接…", u"● Sync resumed. Connecting…"),
            .secs = Seconds(2.4)};
}

SyncToggle::SyncToggle(TrayState &st, const FixedConfig &f, const Paths &p, const AgentConfig &c, ServiceControl &sv,
                       Scheduler &s, Notices &no, Poller &po, Renderer &re, Repair &rep, Hooks h)
    : state(st), fixed(f), paths(p), config(c), services(sv), scheduler(s), notices(no), poller(po), renderer(re),
      repair(rep), hooks(std::move(h)) {}

void SyncToggle::toggleAgent() {
    if (!config.readCfg().bound())
        return hooks.showLogin();
    if (!plistExists(paths))
        return repair.repairService({});
    if (state.service.busy)
        return;
    state.service.busy = true;
    const ToggleDirection direction = toggleDirection(state.health);
    renderer.stateChanged();
    if (direction == ToggleDirection::Pause)
        pause();
    else
        scheduler.background([&sv = services, label = fixed.AGENT_LABEL] { return sv.enable(label); },
                             alive.guard([this](ServiceResult) { resume(RESUME_ATTEMPTS); }));
}

void SyncToggle::pause() {
    auto bootout = [&sv = services, label = fixed.AGENT_LABEL] {
        sv.bootout(label);
        return sv.disable(label);
    };
    scheduler.background(bootout,
                         alive.guard([this](ServiceResult) { waitUntilGone(scheduler.now() + GONE_TIMEOUT); }));
}

void SyncToggle::waitUntilGone(Instant deadline) {
    scheduler.background([&sv = services, label = fixed.AGENT_LABEL] { return sv.print(label); },
                         alive.guard([this, deadline](ServiceResult lookup) {
                             if (lookup == ServiceResult::Failed || scheduler.now() >= deadline)
                                 return finish(ToggleDirection::Pause, lookup);
                             next = scheduler.after(LOOKUP_INTERVAL, [this, deadline] { waitUntilGone(deadline); });
                         }));
}

void SyncToggle::resume(int attemptsLeft) {
    auto started = [&sv = services, label = fixed.AGENT_LABEL, plist = paths.agentPlist] {
        if (sv.bootstrap(plist) != ServiceResult::Succeeded)
            sv.kickstart(label);
        return sv.print(label);
    };
    scheduler.background(started, alive.guard([this, attemptsLeft](ServiceResult lookup) {
        if (lookup == ServiceResult::Succeeded || attemptsLeft == 1)
            return finish(ToggleDirection::Resume, lookup);
        next = scheduler.after(RESUME_RETRY_DELAY, [this, attemptsLeft] { resume(attemptsLeft - 1); });
    }));
}

void SyncToggle::finish(ToggleDirection direction, ServiceResult lookup) {
    next = scheduler.after(POLL_DELAY, [this, direction, lookup] {
        state.service.busy = false;
        outdateJobLookups(state.health);
        applyJobLookup(state.health, lookup);
        state.health.jobCheckedAt = scheduler.now();
        if (direction == ToggleDirection::Resume && lookup == ServiceResult::Succeeded)
            countAsStarting(state.health, scheduler.now());
        poller.poll([this, direction, lookup] { report(direction, lookup); });
    });
}

void SyncToggle::report(ToggleDirection direction, ServiceResult lookup) {
    notices.showHUD(toggleNotice(direction, lookup, state.health.running, hooks.statusLine()));
}

} // namespace korvel
