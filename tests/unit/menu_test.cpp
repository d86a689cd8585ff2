#include "status/status_view.h"
#include "support/fakes.h"
#include "ui/menu/menu_view.h"
#include "ui/views/icon_view.h"
#include "ui/widgets/icons.h"
#include "ui/widgets/menu_widget.h"

#include <QSignalSpy>
#include <QTest>

namespace korvel::test {
namespace {

constexpr Instant NOW(1h);

/// A state in which all is well, to be spoilt step by step.
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

    /// What `rule` makes of it.
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

struct MenuViewTest : ::testing::Test {
    Scene state;

    MenuView view() const { return state.see(menuView); }
    QStringList titles() const {
        QStringList list;
        for (const MenuEntry &e : view().entries)
            list.append(e.isSeparator() ? u"---"_s : e.title);
        return list;
    }
    MenuEntry entry(Action action) const {
        for (const MenuEntry &e : view().entries)
            if (e.action == action)
                return e;
        return {};
    }
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

TEST_F(MenuViewTest, PauseTurnsIntoResumeWhenTheJobIsGoneOrNotKnown) {
    state.health.running = false;
    EXPECT_EQ(entry(Action::MenuToggle).title, u"Pause Sync"_s);
    for (const std::optional<bool> loaded : {std::optional<bool>(false), std::optional<bool>()}) {
        state.health.jobLoaded = loaded;
        EXPECT_EQ(entry(Action::MenuToggle).title, u"Resume Sync"_s);
        EXPECT_EQ(entry(Action::MenuToggle).toolTip, u""_s);
    }
    EXPECT_TRUE(entry(Action::MenuToggle).enabled);
    state.service.busy = true;
    EXPECT_FALSE(entry(Action::MenuToggle).enabled);
    state.service.busy = false;
    state.plistExists = false;
    EXPECT_FALSE(entry(Action::MenuToggle).enabled);
}

TEST_F(MenuViewTest, ALostSignInIsOfferedAgainOncePerEdition) {
    state.health.authDead = true;
    EXPECT_EQ(titles().mid(0, 3), (QStringList{u"Signed out. Sign in again."_s, u"Sign In Again…"_s, u"---"_s}));
    state.health.accountGone = true;
    EXPECT_EQ(entry(Action::BrowserLogin).title, u"Sign In with Another Account…"_s);

    state.fixed = makeFixedConfig(testDeployment(u"intl"_s), {});
    EXPECT_EQ(titles().mid(1, 3),
              (QStringList{u"Sign In with Another Account…"_s, u"Sign In with Password…"_s, u"---"_s}));
    state.bound = false;
    EXPECT_EQ(titles().mid(4, 2), (QStringList{u"Sign In / Sign Up…"_s, u"Sign In with Password…"_s}));
}

TEST_F(MenuViewTest, TheUpdateItemFollowsTheUpdate) {
    UpdateState &update = state.update;
    update.updateBusy = true;
    EXPECT_FALSE(entry(Action::CheckUpdate).enabled);
    update.updateAvail = UpdateInfo{.ver = u"2.0"_s, .file = {}, .sha = {}, .sig = {}};
    EXPECT_EQ(entry(Action::InstallUpdate).title, u"Installing 2.0…"_s);
    update.updatePct = 7;
    EXPECT_EQ(entry(Action::InstallUpdate).title, u"Downloading 2.0… 7%"_s);
    EXPECT_FALSE(entry(Action::InstallUpdate).enabled);
    update.updateBusy = false;
    EXPECT_EQ(entry(Action::InstallUpdate).title, u"⬆ Update to 2.0…"_s);
    EXPECT_TRUE(entry(Action::InstallUpdate).enabled);
}

TEST_F(MenuViewTest, PermissionsShowOnlyWhileTheAgentRuns) {
    state.permissions.permsOk = false;
    state.permissions.permsMissing = {u"Screen"_s, u"Mic"_s};
    state.permissions.permItems = {
        QJsonObject{{u"name"_s, u"Screen"_s}, {u"state"_s, u"denied"_s}, {u"pane"_s, u"x:y"_s}}};
    EXPECT_TRUE(titles().contains(u"Permissions · 2 missing"_s));
    state.permissions.permItems += {QJsonObject(), QJsonObject()};
    EXPECT_TRUE(titles().contains(u"Permissions · 3 missing"_s));
    EXPECT_EQ(entry(Action::OpenPermPane).payload, QJsonValue(u"x:y"_s));
    EXPECT_EQ(entry(Action::AskPerms).title, u"Request Permissions…"_s);
    state.health.running = false;
    EXPECT_EQ(entry(Action::AskPerms), MenuEntry());
}

TEST_F(MenuViewTest, SeparatorsNeverDoubleWhateverTheState) {
    for (unsigned bits = 0; bits < 256; ++bits) {
        state.bound = bits & 1;
        state.plistExists = bits & 2;
        state.health.running = bits & 4;
        state.health.authDead = bits & 8;
        state.menu.optionKey = bits & 16;
        state.permissions.permItems = bits & 32 ? QList<QJsonObject>{QJsonObject()} : QList<QJsonObject>();
        state.e2ee.e2 = {{u"state"_s, bits & 64 ? u"active"_s : u"off"_s}};
        state.service.repairing = bits & 128;
        const QStringList list = titles();
        EXPECT_NE(list.first(), u"---"_s);
        EXPECT_NE(list.last(), u"---"_s);
        EXPECT_FALSE(list.join(u'|').contains(u"---|---"_s)) << bits;
    }
}

struct MenuWidgetTest : ::testing::Test {
    QList<Action> chosen;
    MenuWidget widget{MenuHost::Program, [this](const MenuEntry &e) { chosen.append(e.action); }};

    static MenuView view(std::initializer_list<MenuEntry> entries) { return {QList<MenuEntry>(entries)}; }
    QStringList texts() {
        QStringList list;
        for (const QAction *a : widget.menu().actions())
            list.append(a->isSeparator() ? u"---"_s : a->text());
        return list;
    }
};

const MenuEntry LINE = menuLine(u"line"_s);
const MenuEntry PAUSE = menuItem(u"Pause"_s, Action::MenuToggle, u"tip"_s);
const MenuEntry QUIT = menuItem(u"Quit"_s, Action::QuitAll);

TEST_F(MenuWidgetTest, KeepsTheActionsThatStayWhenOthersComeAndGo) {
    widget.apply(view({LINE, menuSeparator(), PAUSE, QUIT}));
    EXPECT_EQ(texts(), (QStringList{u"line"_s, u"---"_s, u"Pause"_s, u"Quit"_s}));
    const QList<QAction *> before = widget.menu().actions();

    widget.apply(view({LINE, menuItem(u"Sign In"_s, Action::BrowserLogin), menuSeparator(), PAUSE, QUIT}));
    EXPECT_EQ(texts(), (QStringList{u"line"_s, u"Sign In"_s, u"---"_s, u"Pause"_s, u"Quit"_s}));
    EXPECT_EQ(widget.menu().actions().first(), before.first());
    EXPECT_EQ(widget.menu().actions().last(), before.last());

    widget.apply(view({LINE, menuSeparator(), PAUSE, QUIT}));
    EXPECT_EQ(widget.menu().actions(), before);
    widget.apply(view({}));
    EXPECT_TRUE(texts().isEmpty());
}

TEST_F(MenuWidgetTest, TellsThePanelOnlyOfWhatChanged) {
    widget.apply(view({LINE, PAUSE, QUIT}));
    const QList<QAction *> actions = widget.menu().actions();
    QSignalSpy line(actions[0], &QAction::changed);
    QSignalSpy pause(actions[1], &QAction::changed);
    widget.apply(view({LINE, PAUSE, QUIT}));
    MenuEntry disabled = PAUSE;
    disabled.enabled = false;
    widget.apply(view({LINE, disabled, QUIT}));
    EXPECT_EQ(line.count(), 0);
    EXPECT_GE(pause.count(), 1);
    EXPECT_FALSE(actions[1]->isEnabled());
}

TEST_F(MenuWidgetTest, EntriesOfTheSameKindStayWithWhatTheyAreAbout) {
    MenuEntry first = menuItem(u"New device: a"_s, Action::E2Pending);
    first.payload = u"a"_s;
    MenuEntry second = menuItem(u"New device: b"_s, Action::E2Pending);
    second.payload = u"b"_s;
    widget.apply(view({LINE, first, second}));
    const QAction *ofSecond = widget.menu().actions().at(2);
    widget.apply(view({LINE, second}));
    EXPECT_EQ(widget.menu().actions().at(1), ofSecond);
}

TEST_F(MenuWidgetTest, AnEntryThatVanishesWhileItIsChosenStillActs) {
    widget.apply(view({LINE, PAUSE}));
    widget.menu().actions()[1]->trigger();
    widget.apply(view({LINE}));
    QCoreApplication::processEvents();
    EXPECT_EQ(chosen, QList<Action>{Action::MenuToggle});
}

TEST_F(MenuWidgetTest, TitlesFromOutsideAreShownToTheLetter) {
    EXPECT_EQ(actionText(u"a_b & c & d"_s, MenuHost::Program), u"a_b && c && d"_s);
    // In an exported menu Qt makes "_" of the first "&", and the panel takes single "_" away.
    EXPECT_EQ(actionText(u"a_b & c & d"_s, MenuHost::Panel), u"a__b && c & d"_s);
    EXPECT_EQ(menuLine(u"a\tb\r\nc"_s).title, u"a b  c"_s);
    EXPECT_EQ(menuLine(QString(5000, u'x')).title.size(), 1000);
    EXPECT_EQ(plainToolTip(u"a & b"_s), u"a & b"_s);
    EXPECT_EQ(plainToolTip(u"<b>a</b>"_s), u"<span>&lt;b&gt;a&lt;/b&gt;</span>"_s);
}

TEST_F(MenuWidgetTest, ALineIsNotWiderThanItMayBeAndNothingOfItLost) {
    const auto shownFor = [&](const MenuEntry &entry) {
        widget.apply(view({entry}));
        return widget.menu().actions().first();
    };
    MenuEntry entry = menuItem(u"⚠ Microphone · Not allowed"_s, Action::OpenPermPane, u"Without it: silence"_s);
    entry.detail = u" · Without it: silence"_s;
    EXPECT_EQ(shownFor(entry)->text(), u"⚠ Microphone · Not allowed · Without it: silence"_s);
    entry.detail = u" · Without it: "_s + QString(200, u'W');
    EXPECT_EQ(shownFor(entry)->text(), entry.title);
    EXPECT_EQ(shownFor(entry)->toolTip(), u"Without it: silence"_s);
    entry.title = u"⚠ "_s + QString(200, u'W') + u" · Not allowed"_s;
    const QAction *shortened = shownFor(entry);
    EXPECT_LE(widget.menu().fontMetrics().horizontalAdvance(shortened->text()), 640);
    EXPECT_TRUE(shortened->text().startsWith(u"⚠ WW"_s) && shortened->text().endsWith(u"WW · Not allowed"_s));
    EXPECT_EQ(shortened->toolTip(), entry.title + u" · Without it: silence"_s);
}

TEST(PanelIcon, TellsItsThreeStatesByShapeAtEverySize) {
    for (const int size : {18, 36, 54}) {
        const auto image = [&](bool on, bool dimmed) {
            return panelIcon({.on = on, .dimmed = dimmed, .toolTip = {}}).pixmap(size).toImage();
        };
        const QImage active = image(true, false), offline = image(true, true), silent = image(false, true);
        ASSERT_EQ(active.width(), size);
        const auto filled = [&](const QImage &i, double x, double y) {
            const QColor c = i.pixelColor(static_cast<int>(x * size / 18), static_cast<int>(y * size / 18));
            return c.alpha() > 200;
        };
        EXPECT_TRUE(filled(active, 9, 9) && filled(active, 4.2, 9)) << size;
        EXPECT_TRUE(!filled(offline, 9, 9) && filled(offline, 4.2, 9)) << size;
        EXPECT_TRUE(filled(silent, 9, 9) && !filled(silent, 4.2, 9)) << size;
    }
}

} // namespace
} // namespace korvel::test
