#include "status/status_line.h"

#include "status/icon_view.h"
#include "support/fakes.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// A situation in which all is well, to be spoilt by each case.
struct Scene {
    TestHome home;
    TrayState state;
    bool bound = true;
    bool plistExists = true;
    Instant now = Instant(1h);

    Scene() {
        state.health.running = true;
        state.health.online = true;
        state.health.jobLoaded = true;
        state.health.account = u"ann"_s;
        state.health.sessions = 1;
    }
    Situation situation() const {
        return {
            .state = state, .config = home.fixed, .now = now, .bound = bound, .plistExists = plistExists, .server = {}};
    }
    QString line() const { return statusLine(situation()); }
    IconView icon() const { return iconView(situation()); }
    void report(const char *json) { state.e2ee.e2 = QJsonDocument::fromJson(json).object(); }
    void missing(const QStringList &names) {
        state.permissions.permsOk = false;
        state.permissions.permsMissing = names;
    }
};

using Change = std::function<void(Scene &)>;

struct LineCase {
    const char *why;
    Change change;
    QString en;
    QString zh;
};

const Change SILENT = [](Scene &s) { s.state.health.running = s.state.health.online = false; };
const Change STARTING = [](Scene &s) {
    SILENT(s);
    s.state.health.startingUntil = s.now + 1s;
};
const Change CONNECTING = [](Scene &s) {
    s.state.health.online = false;
    s.state.health.connectingSince = s.now - 60s;
};

const LineCase LINE_CASES[] = {
    {"connected", [](Scene &) {}, u"● Connected · ann · 1 session"_s, u"● 已连接 · ann · 1 个会话"_s},
    {"no sessions, no account",
     [](Scene &s) {
         s.state.health.sessions = 0;
         s.state.health.account.clear();
     },
     u"● Connected · 0 sessions"_s, u"● 已连接 · 0 个会话"_s},
    {"one permission missing", [](Scene &s) { s.missing({u"Screen"_s}); },
     u"● Connected · ann · 1 session · ⚠ 1 permission missing"_s, u"● 已连接 · ann · 1 个会话 · ⚠ 缺少 1 项权限"_s},
    {"two permissions missing",
     [](Scene &s) {
         s.missing({u"A"_s, u"B"_s});
     },
     u"● Connected · ann · 1 session · ⚠ 2 permissions missing"_s, u"● 已连接 · ann · 1 个会话 · ⚠ 缺少 2 项权限"_s},
    {"permissions unknown",
     [](Scene &s) {
         s.missing({u"A"_s});
         s.state.permissions.permsOk.reset();
     },
     u"● Connected · ann · 1 session"_s, u"● 已连接 · ann · 1 个会话"_s},
    {"unbound wins over a repair",
     [](Scene &s) {
         s.bound = false;
         s.state.service.repairing = true;
     },
     u"Not signed in"_s, u"未登录"_s},
    {"repair wins over a missing job file",
     [](Scene &s) {
         s.plistExists = false;
         s.state.service.repairing = true;
     },
     u"Repairing…"_s, u"正在修复…"_s},
    {"not installed", [](Scene &s) { s.plistExists = false; },
     u"Korvel isn't installed correctly. Choose Repair Korvel."_s, u"后台服务未正确安装，请点击「修复 Korvel」"_s},
    {"not repairable",
     [](Scene &s) {
         s.plistExists = false;
         s.state.service.repairFailed = true;
     },
     u"Korvel isn't installed correctly. Reinstall Korvel."_s, u"后台服务未正确安装，请重新安装 Korvel"_s},
    {"switching wins over a failed pairing",
     [](Scene &s) {
         s.state.service.busy = true;
         s.report(R"({"state":"pair-failed"})");
     },
     u"Switching…"_s, u"正在切换…"_s},
    {"a failed pairing wins over a lost sign-in",
     [](Scene &s) {
         s.report(R"({"state":"pair-failed"})");
         s.state.health.authDead = true;
     },
     u"⚠ Too many incorrect codes. Sign in again."_s, u"⚠ 配对失败次数过多，请重新登录"_s},
    {"sign-in lost", [](Scene &s) { s.state.health.authDead = true; }, u"Signed out. Sign in again."_s,
     u"登录已失效，请重新登录"_s},
    {"account deleted", [](Scene &s) { s.state.health.authDead = s.state.health.accountGone = true; },
     u"Account deleted. Sign in with a different account."_s, u"账号已注销，请使用其他账号登录"_s},
    {"connecting for a minute", CONNECTING, u"○ Connecting… · ann"_s, u"○ 正在连接… · ann"_s},
    {"connecting for longer",
     [](Scene &s) {
         CONNECTING(s);
         s.state.health.connectingSince = s.now - 61s;
         s.missing({u"A"_s});
     },
     u"○ Can't connect to the server. Retrying… · ann · ⚠ 1 permission missing"_s,
     u"○ 无法连接服务器，正在重试… · ann · ⚠ 缺少 1 项权限"_s},
    {"pairing needed: no permission part",
     [](Scene &s) {
         CONNECTING(s);
         s.missing({u"A"_s});
         s.report(R"({"state":"waiting"})");
     },
     u"○ Sign in to Korvel on your phone, then pair this Mac · ann"_s,
     u"○ 请先在手机上登录 Korvel，再配对这台 Mac · ann"_s},
    {"pairing denied",
     [](Scene &s) {
         CONNECTING(s);
         s.report(R"({"state":"rejected"})");
     },
     u"⚠ Your phone denied this Mac. Sign in again to retry · ann"_s,
     u"⚠ 手机已拒绝这台 Mac，请重新登录后重试 · ann"_s},
    {"approved without keys",
     [](Scene &s) {
         CONNECTING(s);
         s.report(R"({"state":"approved"})");
     },
     u"⚠ This Mac isn't paired. Sign out, then sign in again to pair it · ann"_s,
     u"⚠ 这台 Mac 尚未配对，请退出账号后重新登录并配对 · ann"_s},
    {"not installed wins over switching",
     [](Scene &s) {
         s.plistExists = false;
         s.state.service.busy = true;
     },
     u"Korvel isn't installed correctly. Choose Repair Korvel."_s, u"后台服务未正确安装，请点击「修复 Korvel」"_s},
    {"revoked needs no pairing, so the connection is told",
     [](Scene &s) {
         CONNECTING(s);
         s.report(R"({"state":"revoked"})");
     },
     u"○ Connecting… · ann"_s, u"○ 正在连接… · ann"_s},
    {"starting", STARTING, u"○ Starting… · ann"_s, u"○ 正在启动… · ann"_s},
    {"starting, job not yet known",
     [](Scene &s) {
         STARTING(s);
         s.state.health.jobLoaded.reset();
     },
     u"○ Starting… · ann"_s, u"○ 正在启动… · ann"_s},
    {"starting, but the job is gone",
     [](Scene &s) {
         STARTING(s);
         s.state.health.jobLoaded = false;
     },
     u"⏻ Sync paused · ann"_s, u"⏻ 已暂停同步 · ann"_s},
    {"silent", SILENT, u"○ Korvel isn't responding. Retrying…"_s, u"○ Korvel 未响应，正在重试…"_s},
    {"silent, job not known",
     [](Scene &s) {
         SILENT(s);
         s.state.health.jobLoaded.reset();
     },
     u"⏻ Sync paused · ann"_s, u"⏻ 已暂停同步 · ann"_s},
};

TEST(StatusLine, SaysTheFirstThingThatApplies) {
    for (const LineCase &c : LINE_CASES) {
        Scene scene;
        c.change(scene);
        {
            const LanguageScope english(false);
            EXPECT_EQ(scene.line(), c.en) << c.why;
        }
        const LanguageScope chinese(true);
        EXPECT_EQ(scene.line(), c.zh) << c.why;
    }
}

TEST(Icon, IsActiveWhileTheAgentRunsAndDimmedUnlessAllIsWell) {
    Scene scene;
    EXPECT_EQ(scene.icon(), (IconView{.on = true, .dimmed = false, .toolTip = u"Korvel"_s}));
    scene.state.health.authDead = true;
    EXPECT_EQ(scene.icon(), (IconView{.on = true, .dimmed = true, .toolTip = u"Korvel · Signed out"_s}));
    scene.state.health.authDead = false;
    scene.state.health.online = false;
    EXPECT_EQ(scene.icon(), (IconView{.on = true, .dimmed = true, .toolTip = u"Korvel"_s}));
    scene.state.health.running = false;
    EXPECT_EQ(scene.icon(), (IconView{.on = false, .dimmed = true, .toolTip = u"Korvel"_s}));
}

TEST(Icon, TellsTheMostUrgentThingInItsToolTip) {
    Scene scene;
    scene.missing({u"Screen"_s, u"Mic\n<b>"_s});
    EXPECT_EQ(scene.icon().toolTip, u"Korvel · Missing permissions: Screen, Mic <b>"_s);
    {
        const LanguageScope chinese(true);
        EXPECT_EQ(scene.icon().toolTip, u"Korvel · 缺少权限：Screen、Mic <b>"_s);
    }
    scene.report(R"({"state":"pending"})");
    EXPECT_EQ(scene.icon().toolTip, u"Korvel · Not paired"_s);
    scene.state.health.authDead = scene.state.health.accountGone = true;
    EXPECT_EQ(scene.icon().toolTip, u"Korvel · Account deleted"_s);
}

} // namespace
} // namespace korvel::test
