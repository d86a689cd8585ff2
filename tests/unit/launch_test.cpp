#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

using LaunchTest = TrayFixture;

TEST_F(LaunchTest, AFreshUserIsRepairedFirstAndThenPolled) {
    placeAgent();
    agentResponds(SILENCE);
    scheduler.holdsBackground = true;
    launch();
    EXPECT_TRUE(tray->currentState().service.repairing);
    EXPECT_TRUE(http.paths.isEmpty());
    EXPECT_TRUE(QFile::exists(home.paths.trayPlist)); // so that it starts at login
    scheduler.releaseBackground();
    EXPECT_EQ(http.paths.size(), 2);               // the repair's own poll and the launch's
    EXPECT_EQ(notices.take(), u"Not signed in"_s); // no hint without a job file
    QString keys;
    for (const EditMenuItem &entry : desktop.editMenu)
        keys += entry.title.isEmpty() ? u"-"_s : entry.key;
    EXPECT_EQ(keys, u"zZ-xcva"_s);
}

TEST_F(LaunchTest, UpdatesAreCheckedOnScheduleAndWhenTheMenuOpens) {
    const auto checks = [this] { return requestsTo(u"/v1/dl/manifest"_s); };
    launchBound();
    scheduler.advance(19s);
    EXPECT_EQ(checks(), 0);
    scheduler.advance(2s);
    item.events.menuOpening(); // the last check is recent
    EXPECT_EQ(checks(), 1);
    scheduler.advance(3599s);
    item.events.menuOpening();
    EXPECT_EQ(checks(), 1);
    scheduler.advance(1001ms);
    item.events.menuOpening();
    EXPECT_EQ(checks(), 2);
    scheduler.advance(6h);
    EXPECT_EQ(checks(), 3);
}

TEST_F(LaunchTest, OpeningTheMenuReadsTheOptionKeyAndSendsNothingToASilentAgent) {
    agentResponds(SILENCE);
    launch();
    item.events.menuOpening();
    EXPECT_EQ(requestsTo(u"/perms"_s), 0);
    desktop.option = true;
    EXPECT_EQ(item.entry(Action::OpenLog), MenuEntry());
    item.events.menuOpening();
    EXPECT_NE(item.entry(Action::OpenLog), MenuEntry());
}

TEST_F(LaunchTest, ReopeningDoesTheMostUsefulThing) {
    agentResponds(ONLINE);
    launch();
    const auto reopened = [&] {
        forget();
        programs.runs.clear();
        pairPanel.hide();
        tray->reopen();
        scheduler.runDue();
        return std::exchange(loginPanel.visible, false) ? u"sign in"_s
               : pairPanel.visible                      ? u"show code"_s
               : programs.runs.empty()                  ? services.calls.value(0)
                                                        : u"repair"_s;
    };
    EXPECT_EQ(reopened(), u"sign in"_s);
    home.bind();
    placeAgent();
    EXPECT_EQ(reopened(), u"repair"_s);
    home.installJobFile();
    services.loaded = true;
    for (const auto &[body, effect] :
         {std::pair(withReport(R"({"state":"waiting"})"), u"show code"_s),
          {R"({"ok":true,"authDead":true,"e2ee":{"state":"waiting"}})", u"sign in"_s},
          {R"({"ok":true,"authDead":true,"e2ee":{"state":"pair-failed"}})", u"show code"_s},
          {ONLINE, u"bootout com.korvel.agent"_s}}) {
        nextPoll(body);
        EXPECT_EQ(reopened(), effect) << body.constData();
    }
}

TEST_F(LaunchTest, TheFirstReportComesOnceAndAsSoonAsItIsFinal) {
    const QByteArray starting = R"({"ok":true,"e2ee":{"state":"starting","required":true}})",
                     waiting = R"({"ok":true,"e2ee":{"state":"waiting"}})";
    const QString hint = u" · Double-click Korvel to pause or resume sync"_s,
                  connected = u"● Connected · ann · 1 session"_s + hint;
    const struct {
        bool bound, installed, loads;
        QByteArray first, later; // from the second second on
        milliseconds at;
        QString notice;
    } cases[] = {
        {true, true, true, ONLINE, ONLINE, 0ms, connected},
        {true, true, true, SILENCE, SILENCE, 7500ms, u"○ Starting… · ann"_s + hint},
        {true, true, true, SILENCE, ONLINE, 3s, connected},
        {true, true, true, starting, waiting, 3s,
         u"○ Sign in to Korvel on your phone, then pair this Mac · ann · Double-click Korvel to show the pairing code"_s},
        {true, true, false, SILENCE, SILENCE, 0ms, u"⏻ Sync paused · ann"_s + hint},
        {true, true, false, SIGNED_OUT, SIGNED_OUT, 0ms, u"You've been signed out. Sign in again."_s},
        {true, false, false, OFFLINE, OFFLINE, 0ms, u"Korvel isn't installed correctly. Reinstall Korvel."_s},
        {false, true, false, SILENCE, SILENCE, 0ms, u"Not signed in · Double-click Korvel to sign in"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.notice.toStdString());
        QFile::remove(home.paths.agentPlist);
        c.bound ? home.bind() : home.writeConfig("{}");
        if (c.installed)
            home.installJobFile();
        services.loaded = c.loads;
        services.failBootstraps = c.loads ? 0 : 1000; // disabled
        agentResponds(c.first);
        launch();
        if (!c.bound || !c.installed)
            EXPECT_EQ(health().startingUntil, std::nullopt); // waits for no agent
        if (c.at > 2s) {
            scheduler.advance(2s);
            agentResponds(c.later);
            scheduler.advance(c.at - 2s - 1ms);
            EXPECT_TRUE(notices.shown.empty());
            scheduler.advance(1ms);
        }
        scheduler.advance(2500ms);
        EXPECT_TRUE(notices.visible);
        scheduler.advance(200ms);
        EXPECT_EQ(notices.visible, c.first == SIGNED_OUT); // which is another notice
        scheduler.advance(10s);
        EXPECT_EQ(notices.take(), c.notice);
        tray.reset();
    }
}

TEST_F(LaunchTest, TheFirstReportWaitsForNoServiceManagerWhileTheAgentResponds) {
    scheduler.holdsBackground = true;
    launchBound();
    scheduler.advance(3s);
    EXPECT_EQ(item.statusLine(), u"● Connected · ann · 1 session"_s);
}

} // namespace
} // namespace korvel::test
