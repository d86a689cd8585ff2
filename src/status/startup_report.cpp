#include "status/startup_report.h"

#include "app/model/wording.h"
#include "e2ee/report.h"
#include "status/status_view.h"

namespace korvel {

namespace {

constexpr int LAST_ATTEMPT = 4;
constexpr milliseconds RETRY_DELAY = 1500ms;

QString reopenHint(const Situation &s) {
    const bool authDead = s.state.health.authDead;
    if (!s.bound || authDead)
        return L(u" · 双击 Korvel 可登录", u" · Double-click Korvel to sign in");
    if (e2NeedsPairing(s.state.e2ee.e2, s.bound, authDead))
        return L(u" · 双击 Korvel 可显示配对码", u" · Double-click Korvel to show the pairing code");
    return L(u" · 双击 Korvel 可暂停或恢复同步", u" · Double-click Korvel to pause or resume sync");
}

} // namespace

bool startupReportDue(const Situation &s, int attempt) {
    const HealthState &health = s.state.health;
    if (!s.bound || health.authDead)
        return true;
    if (health.running && health.online)
        return true;
    if (health.jobLoaded == false)
        return true;
    if (!s.plistExists || attempt > LAST_ATTEMPT)
        return true;
    const QJsonObject &e2 = s.state.e2ee.e2;
    return health.running && e2NeedsPairing(e2, s.bound, health.authDead) && !isIdle(e2State(e2));
}

std::optional<Notice> startupNotice(const Situation &s) {
    if (s.state.health.authDead && s.state.health.authDeadNotified)
        return std::nullopt;
    return Notice{.text = statusLine(s) + (s.plistExists ? reopenHint(s) : QString()), .secs = Seconds(2.6)};
}

void StartupReport::startupReport(int attempt) {
    const Situation situation = hooks.situation();
    if (startupReportDue(situation, attempt)) {
        if (const auto notice = startupNotice(situation))
            notices.showHUD(*notice);
        return;
    }
    retry =
        scheduler.after(RETRY_DELAY, [this, attempt] { poller.poll([this, attempt] { startupReport(attempt + 1); }); });
}

} // namespace korvel
