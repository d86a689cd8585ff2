#include "service/sync_toggle.h"
#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

const QString PAUSED = u"⏻ Sync paused · ann"_s;
const QString SILENT = u"○ Korvel isn't responding. Retrying…"_s;
const QString STARTING = u"○ Starting… · ann"_s;
const QString NOT_PAUSED = u"Couldn't pause sync. Try again."_s;
const QString RESUMED = u"● Sync resumed. Connecting…"_s;
const QString NOT_RESUMED =
    u"Korvel couldn't start. Allow it in System Settings › General › Login Items, then choose Resume Sync."_s;

struct SyncToggleTest : TrayFixture {
    void launchWith(const QByteArray &body, bool jobLoaded = true) {
        installAndBind();
        services.loaded = jobLoaded;
        services.failBootstraps = 1; // of the launch
        agentResponds(body);
        launch();
        forget();
    }
    void toggle() { choose(Action::MenuToggle); }
    MenuEntry entry() const { return item.entry(Action::MenuToggle); }
};

TEST_F(SyncToggleTest, APauseUnloadsAndDisablesTheJob) {
    launchWith(ONLINE);
    toggle();
    EXPECT_EQ(item.statusLine(), u"Switching…"_s);
    EXPECT_FALSE(entry().enabled);
    EXPECT_EQ(services.calls,
              (QStringList{u"bootout com.korvel.agent"_s, u"disable com.korvel.agent"_s, u"print com.korvel.agent"_s}));
    toggle(); // ignored meanwhile
    agentResponds(SILENCE);
    scheduler.advance(1s);
    EXPECT_EQ(services.calls.filter(u"bootout"_s).size(), 1);
    EXPECT_EQ(notices.last(), u"⏻ Sync paused. Your phone can't see this Mac."_s);
    EXPECT_EQ(item.statusLine(), PAUSED);
    EXPECT_EQ(entry().title, u"Resume Sync"_s);
}

TEST_F(SyncToggleTest, AJobThatStaysLoadedIsReportedAfterSixSeconds) {
    launchWith(ONLINE);
    services.stuck = true;
    toggle();
    scheduler.advance(6500ms);
    EXPECT_TRUE(notices.shown.empty());
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(), NOT_PAUSED);
    EXPECT_EQ(health().jobLoaded, true);
    EXPECT_LE(health().startingUntil.value_or(DISTANT_PAST), scheduler.now() + 20s); // a pause starts nothing
    EXPECT_NEAR(static_cast<double>(services.calls.filter(u"print"_s).size()), 21, 1);
}

TEST_F(SyncToggleTest, AResumeEnablesAndLoadsTheJobAtTheSecondAttemptAtTheLatest) {
    const struct {
        int failures;
        milliseconds time;
        QString calls, notice, line;
    } cases[] = {
        {0, 900ms, u"enable bootstrap print"_s, RESUMED, STARTING},
        {1, 2400ms, u"enable bootstrap kickstart print bootstrap print"_s, RESUMED, STARTING},
        {2, 2400ms, u"enable bootstrap kickstart print bootstrap kickstart print"_s, NOT_RESUMED, PAUSED},
    };
    for (const auto &c : cases) {
        launchWith(SILENCE, false);
        services.failBootstraps = c.failures;
        toggle();
        scheduler.advance(c.time - 1ms);
        EXPECT_EQ(services.operations(), c.calls);
        EXPECT_TRUE(notices.shown.empty());
        scheduler.advance(1ms);
        EXPECT_EQ(notices.last(), c.notice);
        EXPECT_EQ(item.statusLine(), c.line);
        EXPECT_TRUE(entry().enabled);
    }
    launchWith(SILENCE);
    toggle(); // a loaded job is paused even if its agent is silent
    EXPECT_EQ(services.operations(), u"bootout disable print"_s);
}

TEST_F(SyncToggleTest, EachNoticeIsAboutItsOwnToggle) {
    launchWith(SILENCE, false);
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
        launchWith(ONLINE);
        agentResponds(SILENCE);
        services.runs = !threads; // one of the two is missing
        scheduler.hasThreads = threads;
        toggle();
        scheduler.advance(25s);
        EXPECT_EQ(notices.last(), NOT_PAUSED);
        EXPECT_EQ(item.statusLine(), SILENT);
        EXPECT_TRUE(entry().enabled);
        scheduler.hasThreads = true;
    }
    services.runs = true;
    launchWith(SILENCE, false);
    services.runs = false;
    toggle();
    scheduler.advance(10s);
    EXPECT_EQ(notices.last(), NOT_RESUMED);
    EXPECT_EQ(item.statusLine(), PAUSED);
}

TEST_F(SyncToggleTest, WithoutAnAccountItLeadsToTheSignIn) {
    home.installJobFile();
    agentResponds(SILENCE);
    launch();
    item.press(Action::MenuToggle);
    EXPECT_TRUE(loginPanel.visible);
    EXPECT_FALSE(tray->currentState().service.busy);
}

} // namespace
} // namespace korvel::test
