#include "ui/menu_view.h"

#include "support/fakes.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct MenuViewTest : ::testing::Test {
    TestHome home;
    TrayState state;
    bool bound = true;
    bool plistExists = true;

    MenuViewTest() {
        state.health.running = state.health.online = true;
        state.health.jobLoaded = true;
    }
    MenuView view() const {
        return menuView({.state = state,
                         .config = home.fixed,
                         .timing = timingOf(state.health, Instant(1h)),
                         .bound = bound,
                         .plistExists = plistExists,
                         .server = u"cn.example:443"_s});
    }
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
    EXPECT_EQ(titles(), (QStringList{u"● Connected · 0 sessions"_s, u"---"_s, u"Check for Updates… (1.2.3)"_s, u"---"_s,
                                     u"Pause Sync"_s, u"Sign Out…"_s, u"---"_s, u"Quit Korvel"_s}));
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
    plistExists = false;
    EXPECT_FALSE(entry(Action::MenuToggle).enabled);
}

TEST_F(MenuViewTest, ALostSignInIsOfferedAgainOncePerEdition) {
    state.health.authDead = true;
    EXPECT_EQ(titles().mid(0, 3), (QStringList{u"Signed out. Sign in again."_s, u"Sign In Again…"_s, u"---"_s}));
    state.health.accountGone = true;
    EXPECT_EQ(entry(Action::BrowserLogin).title, u"Sign In with Another Account…"_s);

    home.fixed = makeFixedConfig(testDeployment(u"intl"_s), {});
    EXPECT_EQ(titles().mid(1, 3),
              (QStringList{u"Sign In with Another Account…"_s, u"Sign In with Password…"_s, u"---"_s}));
    bound = false;
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
        bound = bits & 1;
        plistExists = bits & 2;
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

} // namespace
} // namespace korvel::test
