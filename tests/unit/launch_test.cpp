#include "support/tray_fixture.h"

#include "app/reopen.h"
#include "ui/menu_view.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct LaunchTest : TrayFixture {
    int checks() const { return requestsTo(u"/v1/dl/manifest"_s); }
};

TEST_F(LaunchTest, AFreshUserIsRepairedFirstAndThenPolled) {
    placeAgent();
    agentIsSilent();
    makeTray();
    scheduler.holdBackground(true);
    launch();
    EXPECT_TRUE(tray->currentState().service.repairing);
    EXPECT_EQ(http.count, 0);
    EXPECT_EQ(health().startingUntil, std::nullopt);
    scheduler.holdBackground(false);
    scheduler.settle();
    EXPECT_EQ(http.count, 2);                      // the repair's own poll and the launch's
    EXPECT_EQ(notices.last(), u"Not signed in"_s); // no hint without a job file
    QString keys;
    for (const EditMenuItem &entry : desktop.editMenu)
        keys += entry.title.isEmpty() ? u"-"_s : entry.key;
    EXPECT_EQ(keys, u"zZ-xcva"_s);
}

TEST_F(LaunchTest, WithoutAThreadEveryFeatureGoesOn) {
    placeAgent();
    agentIsSilent();
    scheduler.haveThreads(false);
    launch(); // without a job file: a repair
    EXPECT_FALSE(tray->currentState().service.repairing);
    EXPECT_TRUE(tray->currentState().service.repairFailed);
    item.choose(Action::BrowserLogin);
    loginPanel.does(LoginInput::Kind::Account, u"ann"_s);
    loginPanel.does(LoginInput::Kind::Submit);
    scheduler.settle();
    EXPECT_FALSE(loginPanel.view.busy);
    EXPECT_EQ(loginPanel.view.error, u"Couldn't finish. Check your network and try again."_s);
    item.choose(Action::QuitAll);
    scheduler.settle();
    EXPECT_EQ(desktop.terminated, 1);
}

TEST_F(LaunchTest, UpdatesAreLookedForOnScheduleAndWhenTheMenuOpens) {
    installAndBind();
    agentAnswers(ONLINE);
    launch();
    scheduler.advance(19s);
    EXPECT_EQ(checks(), 0);
    scheduler.advance(2s);
    EXPECT_EQ(checks(), 1);
    item.events.menuOpening(); // the last check is fresh
    EXPECT_EQ(checks(), 1);
    scheduler.advance(3601s);
    item.events.menuOpening();
    EXPECT_EQ(checks(), 2);
    scheduler.advance(6h);
    EXPECT_EQ(checks(), 3);
}

TEST_F(LaunchTest, OpeningTheMenuLooksAtTheOptionKeyAndAsksTheAgentOnlyWhileItRuns) {
    agentIsSilent();
    makeTray();
    tray->launch(u"/Applications/Korvel.app/Contents/MacOS/korvel-tray"_s);
    scheduler.settle();
    EXPECT_TRUE(QFile::exists(home.paths.trayPlist)); // so that it starts at login
    const int fetches = requestsTo(u"/perms"_s);
    item.events.menuOpening();
    EXPECT_EQ(checks(), 1);
    EXPECT_EQ(requestsTo(u"/perms"_s), fetches);
    desktop.option = true;
    EXPECT_EQ(item.entry(Action::OpenLog), MenuEntry());
    item.events.menuOpening(); // the key counts at this moment
    EXPECT_EQ(item.entry(Action::OpenLog).title, u"Show Log…"_s);
    item.choose(Action::OpenLog);
    EXPECT_EQ(notices.last(), u"No log yet"_s);
    UpdateState checked{.updateCheckedAt = Instant(1h)};
    EXPECT_FALSE(updateCheckDue(checked, Instant(1h) + 3600s));
    EXPECT_TRUE(updateCheckDue(checked, Instant(1h) + 3601s));
}

TEST_F(LaunchTest, ReopeningDoesTheMostUsefulThing) {
    agentAnswers(ONLINE);
    launch();
    const auto reopened = [&] {
        services.calls.clear();
        pairPanel.hide();
        tray->reopen();
        scheduler.settle();
        if (std::exchange(loginPanel.visible, false))
            return u"sign in"_s;
        return services.calls.value(0, pairPanel.visible ? u"show code"_s : u""_s);
    };
    EXPECT_EQ(reopened(), u"sign in"_s);
    home.bind();
    placeAgent();
    programs.runs.clear();
    reopened();
    EXPECT_EQ(programs.runs.size(), 2u);
    home.installJobFile();
    const auto afterAnswer = [&](const char *body) {
        agentAnswers(body);
        scheduler.advance(3s);
        return reopened();
    };
    EXPECT_EQ(afterAnswer(R"({"ok":true,"e2ee":{"state":"waiting"}})"), u"show code"_s);
    EXPECT_EQ(afterAnswer(R"({"ok":true,"authDead":true,"e2ee":{"state":"waiting"}})"), u"sign in"_s);
    EXPECT_EQ(afterAnswer(R"({"ok":true,"authDead":true,"e2ee":{"state":"pair-failed"}})"), u"show code"_s);
    services.loaded = true;
    EXPECT_EQ(afterAnswer(R"({"ok":true,"online":true})"), u"bootout com.korvel.agent"_s);
}

} // namespace
} // namespace korvel::test
