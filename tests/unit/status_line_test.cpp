#include "status/status_line.h"

#include "status/icon_view.h"
#include "support/fakes.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

constexpr Instant NOW(1h);

/// A state in which all is well, to be spoilt step by step.
struct Scene : TrayState {
    bool bound = true;
    bool plistExists = true;

    Scene() {
        health.running = health.online = true;
        health.jobLoaded = true;
        health.account = u"ann"_s;
        health.sessions = 1;
    }
    Scene &unbound() { return bound = false, *this; }
    Scene &notInstalled() { return plistExists = false, *this; }
    Scene &repairing() { return service.repairing = true, *this; }
    Scene &notRepairable() { return service.repairFailed = true, *this; }
    Scene &switching() { return service.busy = true, *this; }
    Scene &signedOut() { return health.authDead = true, *this; }
    Scene &deleted() { return health.accountGone = true, signedOut(); }
    Scene &silent() { return health.running = health.online = false, *this; }
    Scene &starting() { return health.startingUntil = NOW + 1s, silent(); }
    Scene &job(std::optional<bool> loaded) { return health.jobLoaded = loaded, *this; }
    Scene &connectingFor(std::chrono::seconds time) {
        health.online = false;
        health.connectingSince = NOW - time;
        return *this;
    }
    Scene &missing(const QStringList &names) {
        permissions.permsOk = false;
        permissions.permsMissing = names;
        return *this;
    }
    Scene &reports(const QString &encryption) { return e2ee.e2 = {{u"state"_s, encryption}}, *this; }

    /// What `rule` makes of it.
    template <class Rule>
    auto see(Rule rule) const {
        const TestHome home;
        return rule({.state = *this,
                     .config = home.fixed,
                     .timing = timingOf(health, NOW),
                     .bound = bound,
                     .plistExists = plistExists,
                     .server = {}});
    }
};

TEST(StatusLine, SaysTheFirstThingThatApplies) {
    const Scene anonymous = [] {
        Scene scene;
        scene.health.sessions = 0;
        scene.health.account.clear();
        return scene;
    }();
    const std::pair<Scene, QString> cases[] = {
        {Scene(), u"● Connected · ann · 1 session"_s},
        {anonymous, u"● Connected · 0 sessions"_s},
        {Scene().missing({}), u"● Connected · ann · 1 session"_s},
        {Scene().missing({u"A"_s}), u"● Connected · ann · 1 session · ⚠ 1 permission missing"_s},
        {Scene().missing({u"A"_s, u"B"_s}), u"● Connected · ann · 1 session · ⚠ 2 permissions missing"_s},
        {Scene().unbound().repairing(), u"Not signed in"_s},
        {Scene().notInstalled().repairing(), u"Repairing…"_s},
        {Scene().notInstalled().switching(), u"Korvel isn't installed correctly. Choose Repair Korvel."_s},
        {Scene().notInstalled().notRepairable(), u"Korvel isn't installed correctly. Reinstall Korvel."_s},
        {Scene().switching().reports(u"pair-failed"_s), u"Switching…"_s},
        {Scene().signedOut().reports(u"pair-failed"_s), u"⚠ Too many incorrect codes. Sign in again."_s},
        {Scene().signedOut(), u"Signed out. Sign in again."_s},
        {Scene().deleted(), u"Account deleted. Sign in with a different account."_s},
        {Scene().connectingFor(60s), u"○ Connecting… · ann"_s},
        {Scene().connectingFor(61s).missing({u"A"_s}),
         u"○ Can't connect to the server. Retrying… · ann · ⚠ 1 permission missing"_s},
        {Scene().connectingFor(60s).missing({u"A"_s}).reports(u"waiting"_s),
         u"○ Sign in to Korvel on your phone, then pair this Mac · ann"_s},
        {Scene().connectingFor(60s).reports(u"rejected"_s),
         u"⚠ Your phone denied this Mac. Sign in again to retry · ann"_s},
        {Scene().connectingFor(60s).reports(u"approved"_s),
         u"⚠ This Mac isn't paired. Sign out, then sign in again to pair it · ann"_s},
        {Scene().connectingFor(60s).reports(u"revoked"_s), u"○ Connecting… · ann"_s}, // needs no pairing
        {Scene().starting(), u"○ Starting… · ann"_s},
        {Scene().starting().job({}), u"○ Starting… · ann"_s},
        {Scene().starting().job(false), u"⏻ Sync paused · ann"_s},
        {Scene().silent(), u"○ Korvel isn't responding. Retrying…"_s},
        {Scene().silent().job({}), u"⏻ Sync paused · ann"_s},
    };
    for (const auto &[scene, line] : cases)
        EXPECT_EQ(scene.see(statusLine), line);
    Scene unknown = Scene().missing({u"A"_s});
    unknown.permissions.permsOk.reset();
    EXPECT_EQ(unknown.see(statusLine), u"● Connected · ann · 1 session"_s);
}

TEST(StatusLine, IsPutTogetherInChineseToo) {
    const LanguageScope chinese(true);
    EXPECT_EQ(Scene().missing({u"A"_s, u"B"_s}).see(statusLine), u"● 已连接 · ann · 1 个会话 · ⚠ 缺少 2 项权限"_s);
    EXPECT_EQ(Scene().connectingFor(60s).reports(u"rejected"_s).see(statusLine),
              u"⚠ 手机已拒绝这台 Mac，请重新登录后重试 · ann"_s);
    EXPECT_EQ(Scene().notInstalled().see(statusLine), u"后台服务未正确安装，请点击「修复 Korvel」"_s);
}

TEST(Icon, IsActiveWhileTheAgentRunsAndDimmedUnlessAllIsWell) {
    const std::pair<Scene, IconView> cases[] = {
        {Scene(), {.on = true, .dimmed = false, .toolTip = u"Korvel"_s}},
        {Scene().signedOut(), {.on = true, .dimmed = true, .toolTip = u"Korvel · Signed out"_s}},
        {Scene().connectingFor(1s), {.on = true, .dimmed = true, .toolTip = u"Korvel"_s}},
        {Scene().silent(), {.on = false, .dimmed = true, .toolTip = u"Korvel"_s}},
    };
    for (const auto &[scene, icon] : cases)
        EXPECT_EQ(scene.see(iconView), icon);
}

TEST(Icon, TellsTheMostUrgentThingInItsToolTip) {
    const auto toolTip = [](const Scene &scene) { return scene.see(iconView).toolTip; };
    Scene scene = Scene().missing({u"Screen"_s, u"Mic\n<b>"_s});
    EXPECT_EQ(toolTip(scene), u"Korvel · Missing permissions: Screen, Mic <b>"_s);
    EXPECT_EQ(toolTip(scene.reports(u"pending"_s)), u"Korvel · Not paired"_s);
    EXPECT_EQ(toolTip(scene.deleted()), u"Korvel · Account deleted"_s);
    const LanguageScope chinese(true);
    EXPECT_EQ(toolTip(Scene().missing({u"A"_s, u"B"_s})), u"Korvel · 缺少权限：A、B"_s);
}

} // namespace
} // namespace korvel::test
