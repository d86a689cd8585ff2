#include "service/sync_toggle.h"

#include "account/server_rules.h"
#include "app/situation.h"
#include "app/wording.h"

namespace korvel {

namespace {

constexpr auto GONE_WITHIN = 6s;
constexpr milliseconds LOOK_AGAIN = 300ms;
constexpr int RESUME_ATTEMPTS = 2; // bootstrap can fail for some seconds after a bootout
constexpr milliseconds RESUME_AGAIN = 1500ms;
constexpr milliseconds SETTLE = 900ms;

} // namespace

ToggleDirection toggleDirection(const HealthState &health) {
    const bool wasRunning = health.running || health.jobLoaded == true;
    return wasRunning ? ToggleDirection::Pause : ToggleDirection::Resume;
}

Notice toggleNotice(ToggleDirection direction, bool loaded, bool running, const QString &statusLine) {
    if (direction == ToggleDirection::Pause) {
        if (loaded)
            return {.text = L(u"无法暂停同步，请重试", u"Couldn't pause sync. Try again."),
                    .secs = Seconds(4),
                    .error = true};
        return {.text = L(u"⏻ 已暂停同步，手机将无法看到这台电脑",
                          u"⏻ Sync paused. Your phone can't see this Mac."),
                .secs = Seconds(2.4)};
    }
    if (!loaded)
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
                       Scheduler &s, Hooks h)
    : state(st), fixed(f), paths(p), config(c), services(sv), scheduler(s), hooks(std::move(h)) {}

void SyncToggle::toggleAgent() {
    if (!bound(config.readCfg()))
        return hooks.showLogin();
    if (!plistExists(paths))
        return hooks.repairService();
    if (state.service.busy)
        return;
    state.service.busy = true;
    direction = toggleDirection(state.health);
    hooks.render();
    if (direction == ToggleDirection::Pause)
        pause();
    else
        scheduler.background([&sv = services, label = fixed.AGENT_LABEL] { return sv.enable(label); },
                             alive.guard([this](bool) { resume(RESUME_ATTEMPTS); }));
}

void SyncToggle::pause() {
    auto bootout = [&sv = services, label = fixed.AGENT_LABEL] {
        sv.bootout(label);
        return sv.disable(label);
    };
    scheduler.background(bootout, alive.guard([this](bool) { waitUntilGone(scheduler.now() + GONE_WITHIN); }));
}

void SyncToggle::waitUntilGone(Instant deadline) {
    scheduler.background([&sv = services, label = fixed.AGENT_LABEL] { return sv.print(label); },
                         alive.guard([this, deadline](bool loaded) {
                             if (!loaded || scheduler.now() >= deadline)
                                 return settle(loaded);
                             next = scheduler.after(LOOK_AGAIN, [this, deadline] { waitUntilGone(deadline); });
                         }));
}

void SyncToggle::resume(int attemptsLeft) {
    auto loaded = [&sv = services, label = fixed.AGENT_LABEL, plist = paths.agentPlist] {
        if (!sv.bootstrap(plist))
            sv.kickstart(label);
        return sv.print(label);
    };
    scheduler.background(loaded, alive.guard([this, attemptsLeft](bool isLoaded) {
        if (isLoaded || attemptsLeft == 1)
            return settle(isLoaded);
        next = scheduler.after(RESUME_AGAIN, [this, attemptsLeft] { resume(attemptsLeft - 1); });
    }));
}

void SyncToggle::settle(bool loaded) {
    next = scheduler.after(SETTLE, [this, loaded] {
        state.service.busy = false;
        state.health.jobLoaded = loaded;
        state.health.jobCheckedAt = scheduler.now();
        if (direction == ToggleDirection::Resume && loaded)
            countAsStarting(state.health, scheduler.now());
        hooks.poll([this, loaded] { report(loaded); });
    });
}

void SyncToggle::report(bool loaded) {
    hooks.showHUD(toggleNotice(direction, loaded, state.health.running, hooks.statusLine()));
}

} // namespace korvel
