#include "status/status_view.h"
#include "support/fakes.h"
#include "ui/menu/menu_view.h"
#include "ui/views/icon_view.h"
#include "ui/widgets/menu_widget.h"

#include <QSignalSpy>

namespace korvel::test {
namespace {

constexpr Instant NOW(1h);

/// A state without problems, and the steps that add them.
struct Scene : TrayState {
    bool bound = true;
    bool plistExists = true;
    FixedConfig fixed = makeFixedConfig(testDeployment(), {});

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

    template <class Rule>
    auto see(Rule rule) const {
        return rule({.state = *this,
                     .isCn = fixed.IS_CN,
                     .version = fixed.VERSION,
                     .timing = timingOf(health, NOW),
                     .bound = bound,
                     .plistExists = plistExists,
                     .server = fixed.DEFAULT_SERVER});
    }
};

TEST(StatusLine, ShowsTheFirstSituationThatApplies) {
    Scene anonymous, unknown = Scene().missing({u"A"_s});
    anonymous.health.sessions = 0;
    anonymous.health.account.clear();
    unknown.permissions.permsOk.reset();
    const std::pair<Scene, QString> cases[] = {
        {Scene(), u"● Connected · ann · 1 session"_s},
        {anonymous, u"● Connected · 0 sessions"_s},
        {unknown, u"● Connected · ann · 1 session"_s},
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
        {Scene().starting().job({}), u"○ Starting… · ann"_s},
        {Scene().starting().job(false), u"⏻ Sync paused · ann"_s},
        {Scene().silent(), u"○ Korvel isn't responding. Retrying…"_s},
        {Scene().silent().job({}), u"⏻ Sync paused · ann"_s},
    };
    for (const auto &[scene, line] : cases) {
        EXPECT_EQ(scene.see(statusLine), line);
        EXPECT_FALSE(titlesOf(scene.see(menuView).entries).join(u'|').contains(u"---|---"_s))
            << "separators never double: " << line.toStdString();
    }
    const QScopedValueRollback chinese(ZH, true);
    EXPECT_EQ(Scene().missing({u"A"_s, u"B"_s}).see(statusLine), u"● 已连接 · ann · 1 个会话 · ⚠ 缺少 2 项权限"_s);
    EXPECT_EQ(Scene().connectingFor(60s).reports(u"rejected"_s).see(statusLine),
              u"⚠ 手机已拒绝这台 Mac，请重新登录后重试 · ann"_s);
}

TEST(Icon, IsActiveWhileTheAgentRunsAndItsToolTipNamesTheMostUrgentProblem) {
    const Scene lacking = Scene().missing({u"Screen"_s, u"Mic\n<b>"_s});
    const std::pair<Scene, IconView> cases[] = {
        {Scene(), {.on = true, .dimmed = false, .toolTip = u"Korvel"_s}},
        {Scene().signedOut(), {.on = true, .dimmed = true, .toolTip = u"Korvel · Signed out"_s}},
        {Scene().connectingFor(1s), {.on = true, .dimmed = true, .toolTip = u"Korvel"_s}},
        {Scene().silent(), {.on = false, .dimmed = true, .toolTip = u"Korvel"_s}},
        {lacking, {.on = true, .dimmed = false, .toolTip = u"Korvel · Missing permissions: Screen, Mic <b>"_s}},
        {Scene(lacking).reports(u"pending"_s), {.on = true, .dimmed = false, .toolTip = u"Korvel · Not paired"_s}},
        {Scene(lacking).deleted(), {.on = true, .dimmed = true, .toolTip = u"Korvel · Account deleted"_s}},
    };
    for (const auto &[scene, icon] : cases)
        EXPECT_EQ(scene.see(iconView), icon) << icon.toolTip.toStdString();
    const QScopedValueRollback chinese(ZH, true);
    EXPECT_EQ(Scene().missing({u"A"_s, u"B"_s}).see(iconView).toolTip, u"Korvel · 缺少权限：A、B"_s);
}

struct MenuViewTest : ::testing::Test {
    Scene state;

    MenuView view() const { return state.see(menuView); }
    QStringList titles() const { return titlesOf(view().entries); }
    MenuEntry entry(Action action) const { return entryFor(action, view()); }
};

TEST_F(MenuViewTest, AHealthyMacOffersPauseAndSignOutAndWithOptionItsDiagnostics) {
    EXPECT_EQ(titles(), (QStringList{u"● Connected · ann · 1 session"_s, u"---"_s, u"Check for Updates… (1.2.3)"_s,
                                     u"---"_s, u"Pause Sync"_s, u"Sign Out…"_s, u"---"_s, u"Quit Korvel"_s}));
    state.menu.optionKey = true;
    EXPECT_EQ(titles().mid(7), (QStringList{u"Show Log…"_s, u"Server cn.example:443"_s, u"---"_s, u"Quit Korvel"_s}));
    EXPECT_EQ(entry(Action::MenuToggle).toolTip,
              u"Your phone won't see this Mac until you resume sync, even after a restart."_s);
    EXPECT_FALSE(view().entries.first().enabled);
}

TEST_F(MenuViewTest, PauseBecomesResumeWhenTheJobIsNotLoadedOrUnknown) {
    const std::tuple<Scene, QString, bool> cases[] = {
        {Scene().silent(), u"Pause Sync"_s, true},
        {Scene().silent().job(false), u"Resume Sync"_s, true},
        {Scene().silent().job({}), u"Resume Sync"_s, true},
        {Scene().silent().job({}).switching(), u"Resume Sync"_s, false},
        {Scene().silent().job({}).notInstalled(), u"Resume Sync"_s, false},
    };
    for (const auto &[scene, title, enabled] : cases) {
        state = scene;
        EXPECT_EQ(entry(Action::MenuToggle).title, title);
        EXPECT_EQ(entry(Action::MenuToggle).enabled, enabled);
        EXPECT_EQ(entry(Action::MenuToggle).toolTip.isEmpty(), title == u"Resume Sync");
    }
}

TEST_F(MenuViewTest, ALostSignInIsOfferedAgainOncePerEdition) {
    state.signedOut();
    EXPECT_EQ(titles().mid(0, 3), (QStringList{u"Signed out. Sign in again."_s, u"Sign In Again…"_s, u"---"_s}));
    state.deleted();
    EXPECT_EQ(entry(Action::BrowserLogin).title, u"Sign In with Another Account…"_s);
    state.fixed = testConfig(u"intl"_s);
    EXPECT_EQ(titles().mid(1, 3),
              (QStringList{u"Sign In with Another Account…"_s, u"Sign In with Password…"_s, u"---"_s}));
    state.unbound();
    EXPECT_EQ(titles().mid(4, 2), (QStringList{u"Sign In / Sign Up…"_s, u"Sign In with Password…"_s}));
}

struct MenuWidgetTest : ::testing::Test {
    QList<Action> chosen;
    MenuWidget widget{MenuHost::Program, [this](const MenuEntry &e) { chosen.append(e.action); }};

    /// The actions of the menu for these entries.
    QList<QAction *> shown(const QList<MenuEntry> &entries) {
        widget.apply({entries});
        return widget.menu().actions();
    }
};

const MenuEntry LINE = menuLine(u"line"_s);
const MenuEntry PAUSE = menuItem(u"Pause"_s, Action::MenuToggle, u"tip"_s);
const MenuEntry QUIT = menuItem(u"Quit"_s, Action::QuitAll);

TEST_F(MenuWidgetTest, KeepsTheActionsThatStayAndReportsOnlyChanges) {
    const QList<QAction *> before = shown({LINE, menuSeparator(), PAUSE, QUIT});
    const QList<QAction *> more =
        shown({LINE, menuItem(u"Sign In"_s, Action::BrowserLogin), menuSeparator(), PAUSE, QUIT});
    ASSERT_EQ(more.size(), 5);
    EXPECT_EQ(more[1]->text(), u"Sign In"_s);
    EXPECT_TRUE(more[2]->isSeparator());
    EXPECT_EQ(more.first(), before.first());
    EXPECT_EQ(more.last(), before.last());
    EXPECT_EQ(shown({LINE, menuSeparator(), PAUSE, QUIT}), before);
    const QSignalSpy line(before[0], &QAction::changed), pause(before[2], &QAction::changed);
    MenuEntry disabled = PAUSE;
    disabled.enabled = false;
    shown({LINE, menuSeparator(), disabled, QUIT});
    EXPECT_EQ(line.count(), 0);
    EXPECT_GE(pause.count(), 1);
    EXPECT_FALSE(before[2]->isEnabled());
    EXPECT_TRUE(shown({}).isEmpty());
}

TEST_F(MenuWidgetTest, EntriesOfTheSameKindAreToldApartByTheirPayload) {
    MenuEntry first = menuItem(u"New device: a"_s, Action::E2Pending);
    first.payload = u"a"_s;
    MenuEntry second = menuItem(u"New device: b"_s, Action::E2Pending);
    second.payload = u"b"_s;
    const QAction *ofSecond = shown({LINE, first, second}).at(2);
    EXPECT_EQ(shown({LINE, second}).at(1), ofSecond);
}

TEST_F(MenuWidgetTest, AnEntryThatVanishesWhileItIsChosenStillActs) {
    shown({LINE, PAUSE})[1]->trigger();
    shown({LINE});
    QCoreApplication::processEvents();
    EXPECT_EQ(chosen, QList<Action>{Action::MenuToggle});
}

TEST_F(MenuWidgetTest, TitlesFromOutsideAreShownUnchanged) {
    EXPECT_EQ(actionText(u"a_b & c & d"_s, MenuHost::Program), u"a_b && c && d"_s);
    // In an exported menu Qt makes "_" of the first "&", and the panel takes single "_" away.
    EXPECT_EQ(actionText(u"a_b & c & d"_s, MenuHost::Panel), u"a__b && c & d"_s);
    EXPECT_EQ(menuLine(u"a\tb\r\nc"_s).title, u"a b  c"_s);
    EXPECT_EQ(menuLine(QString(5000, u'x')).title.size(), 1000);
    EXPECT_EQ(plainToolTip(u"a & b"_s), u"a & b"_s);
    EXPECT_EQ(plainToolTip(u"<b>a</b>"_s), u"<span>&lt;b&gt;a&lt;/b&gt;</span>"_s);
}

TEST_F(MenuWidgetTest, ALineHasALimitedWidthAndItsToolTipTheWholeText) {
    MenuEntry entry = menuItem(u"⚠ Microphone · Not allowed"_s, Action::OpenPermPane, u"Without it: silence"_s);
    entry.detail = u" · Without it: silence"_s;
    EXPECT_EQ(shown({entry})[0]->text(), u"⚠ Microphone · Not allowed · Without it: silence"_s);
    entry.detail = u" · Without it: "_s + QString(200, u'W');
    EXPECT_EQ(shown({entry})[0]->text(), entry.title);
    EXPECT_EQ(shown({entry})[0]->toolTip(), u"Without it: silence"_s);
    entry.title = u"⚠ "_s + QString(200, u'W') + u" · Not allowed"_s;
    const QAction *shortened = shown({entry})[0];
    EXPECT_LE(widget.menu().fontMetrics().horizontalAdvance(shortened->text()), 640);
    EXPECT_TRUE(shortened->text().startsWith(u"⚠ WW"_s) && shortened->text().endsWith(u"WW · Not allowed"_s));
    EXPECT_EQ(shortened->toolTip(), entry.title + u" · Without it: silence"_s);
}

} // namespace
} // namespace korvel::test
