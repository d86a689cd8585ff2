#include "service/sync_toggle.h"
#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

const QString PAUSED = u"⏻ Sync paused · ann"_s;
const QString SILENT = u"○ Korvel isn't responding. Retrying…"_s;
const QString NOT_PAUSED = u"Couldn't pause sync. Try again."_s;
const QString RESUMED = u"● Sync resumed. Connecting…"_s;

struct SyncToggleTest : TrayFixture {
    void launchConnected() {
        launchBound();
        forget();
    }
    void launchPaused() {
        installAndBind();
        services.loaded = false;
        services.failBootstraps = 1;
        agentIsSilent();
        launch();
        forget();
    }
    void toggle() { choose(Action::MenuToggle); }
    MenuEntry entry() const { return item.entry(Action::MenuToggle); }
};

TEST_F(SyncToggleTest, APauseUnloadsAndDisablesTheJob) {
    launchConnected();
    toggle();
    EXPECT_EQ(item.statusLine(), u"Switching…"_s);
    EXPECT_FALSE(entry().enabled);
    EXPECT_EQ(services.calls,
              (QStringList{u"bootout com.korvel.agent"_s, u"disable com.korvel.agent"_s, u"print com.korvel.agent"_s}));
    toggle(); // ignored meanwhile
    agentIsSilent();
    scheduler.advance(1s);
    EXPECT_EQ(services.calls.filter(u"bootout"_s).size(), 1);
    EXPECT_EQ(notices.last(), u"⏻ Sync paused. Your phone can't see this Mac."_s);
    EXPECT_EQ(item.statusLine(), PAUSED);
    EXPECT_EQ(entry().title, u"Resume Sync"_s);
}

TEST_F(SyncToggleTest, AJobThatStaysLoadedIsReportedAfterSixSeconds) {
    launchConnected();
    services.stuck = true;
    toggle();
    scheduler.advance(6500ms);
    EXPECT_TRUE(notices.shown.empty());
    EXPECT_EQ(item.statusLine(), u"Switching…"_s);
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(), NOT_PAUSED);
    EXPECT_EQ(health().jobLoaded, true);
    EXPECT_LE(health().startingUntil.value_or(DISTANT_PAST), scheduler.now() + 20s); // a pause starts nothing
    EXPECT_NEAR(static_cast<double>(services.calls.filter(u"print"_s).size()), 21, 1);
}

TEST_F(SyncToggleTest, AResumeEnablesAndLoadsTheJobAtTheSecondAttemptAtTheLatest) {
    launchPaused();
    toggle();
    EXPECT_EQ(services.calls.mid(0, 3),
              (QStringList{u"enable com.korvel.agent"_s, u"bootstrap com.korvel.agent.plist"_s,
                           u"print com.korvel.agent"_s}));
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(), RESUMED);
    EXPECT_EQ(item.statusLine(), u"○ Starting… · ann"_s);
    nextPoll(ONLINE);
    EXPECT_EQ(item.statusLine(), u"● Connected · ann · 1 session"_s);
    agentIsSilent();
    scheduler.advance(3s);
    toggle(); // a loaded job is paused even if its agent is silent
    EXPECT_EQ(services.calls.filter(u"bootout"_s).size(), 1);
    scheduler.advance(1s);
    services.failBootstraps = 1;
    toggle();
    scheduler.advance(2500ms);
    EXPECT_EQ(notices.last(), RESUMED);
    scheduler.advance(1s);
    toggle();
    scheduler.advance(1s);
    services.failBootstraps = 10;
    forget();
    toggle();
    scheduler.advance(2300ms);
    EXPECT_TRUE(notices.shown.empty());
    scheduler.advance(200ms);
    EXPECT_TRUE(notices.last().startsWith(u"Korvel couldn't start. Allow it in System Settings"_s));
    EXPECT_EQ(services.calls.filter(u"bootstrap"_s).size(), 2);
    EXPECT_EQ(services.calls.filter(u"enable"_s).size(), 1);
    EXPECT_EQ(item.statusLine(), PAUSED);
    EXPECT_TRUE(entry().enabled);
}

TEST_F(SyncToggleTest, EachNoticeIsAboutItsOwnToggle) {
    launchPaused();
    http.respond = nullptr; // the resume's last poll is in flight when a pause begins
    toggle();
    scheduler.advance(1s);
    ASSERT_FALSE(tray->currentState().service.busy);
    toggle();
    while (!http.inFlight.empty())
        http.complete(0, noResponse());
    scheduler.runDue();
    EXPECT_EQ(notices.last(), RESUMED);
    EXPECT_FALSE(notices.shown.back().error);
}

TEST_F(SyncToggleTest, ACommandThatCannotRunEndsTheToggleAndLeavesTheJobUnknown) {
    for (const bool threads : {true, false}) {
        services.runs = true;
        launchConnected();
        agentIsSilent();
        services.runs = !threads; // one of the two is missing
        scheduler.haveThreads(threads);
        toggle();
        scheduler.advance(25s);
        EXPECT_EQ(notices.last(), NOT_PAUSED);
        EXPECT_EQ(item.statusLine(), SILENT);
        EXPECT_TRUE(entry().enabled);
        scheduler.haveThreads(true);
    }
    services.runs = true;
    launchPaused();
    services.runs = false;
    toggle();
    scheduler.advance(10s);
    EXPECT_TRUE(notices.last().startsWith(u"Korvel couldn't start."_s));
    EXPECT_EQ(item.statusLine(), PAUSED);
}

TEST_F(SyncToggleTest, WithoutAnAccountItLeadsToTheSignIn) {
    home.installJobFile();
    agentIsSilent();
    launch();
    item.press(Action::MenuToggle);
    EXPECT_TRUE(loginPanel.visible);
    EXPECT_FALSE(tray->currentState().service.busy);
}

} // namespace
} // namespace korvel::test
