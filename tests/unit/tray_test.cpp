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
    EXPECT_EQ(desktop.editKeys, u"zZ-xcva"_s);
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
        EXPECT_TRUE(!health().startingUntil || (c.bound && c.installed)); // else it waits for no agent
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

struct HealthPollTest : TrayFixture {
    qsizetype lookups() const { return services.calls.filter(u"print"_s).size(); }
    /// Launches a bound Mac whose agent responds with `body`, past the grace period of the launch.
    void launchWith(const QByteArray &body) {
        launchBound(body);
        scheduler.advance(25s);
        forget();
    }
    void expectLine(const QString &line) const { EXPECT_EQ(item.statusLine(), line); }
};

TEST_F(HealthPollTest, AResponseIsCopiedIntoTheStateWithinBounds) {
    launchWith(R"({"ok":true,"online":true,"ver":"a/korvel-agent/1.4.2","e2ee":{"state":"active"},
                   "perms":{"ok":false,"missing":["Mic"]}})");
    const PermissionState &permissions = tray->currentState().permissions;
    EXPECT_TRUE(health().running && health().online);
    EXPECT_EQ(http.last.url, u"http://127.0.0.1:8790/health"_s);
    EXPECT_EQ(http.last.timeout, 2s);
    EXPECT_EQ(health().agentVer, u"1.4.2"_s);
    EXPECT_EQ(health().account, u"ann"_s); // from the configuration
    EXPECT_EQ(permissions.permsMissing, QStringList{u"Mic"_s});
    nextPoll(R"({"ok":true,"ver":"9","account":"bob","sessions":3,"perms":{"ok":1,"missing":["a",2]}})");
    EXPECT_EQ(health().agentVer, u"1.4.2"_s);
    EXPECT_EQ(health().account, u"bob"_s);
    EXPECT_EQ(health().sessions, 3);
    EXPECT_FALSE(health().online);
    EXPECT_TRUE(tray->currentState().e2ee.e2.isEmpty());
    EXPECT_EQ(permissions.permsOk, std::nullopt);
    EXPECT_TRUE(permissions.permsMissing.isEmpty());
    nextPoll(R"({"ok":1,"online":true})"); // is no health response
    EXPECT_FALSE(health().running);

    const QByteArray text = "\"" + QByteArray(2000, 'x') + "\"", entries = "{}" + QByteArray(",{}").repeated(999);
    nextPoll(R"({"ok":true,"account":)" + text + R"(,"perms":{"missing":[)" + text +
             QByteArray("," + text).repeated(99) + R"(],"ok":false}})");
    EXPECT_EQ(health().account.size(), 1000);
    EXPECT_EQ(permissions.permsMissing.size(), 64);
    EXPECT_EQ(permissions.permsMissing.first().size(), 1000);
    agentResponds(R"({"ok":false,"items":[)" + entries + "]}");
    item.events.menuOpening();
    EXPECT_EQ(permissions.permItems.size(), 64);
    agentResponds(SILENCE);
    item.events.menuOpening(); // fetches no permissions
    EXPECT_TRUE(permissions.permsFetchFailed);
    nextPoll(SILENCE); // forgets what only a running agent knows
    EXPECT_FALSE(health().running || health().online || health().connectingSince);
    EXPECT_EQ(permissions, PermissionState());
}

TEST_F(HealthPollTest, WithAnUnchangedResponseTheViewFollowsClockAndFilesOnly) {
    launchWith(ONLINE);
    const int icons = item.iconChanges, menus = item.menuChanges;
    scheduler.advance(300s);
    EXPECT_EQ(item.iconChanges, icons);
    EXPECT_EQ(item.menuChanges, menus);
    agentResponds(OFFLINE);
    scheduler.advance(30s);
    EXPECT_EQ(item.iconChanges, icons + 1);
    EXPECT_EQ(item.menuChanges, menus + 1);
    expectLine(u"○ Connecting… · ann"_s);
    scheduler.advance(60s);
    expectLine(u"○ Can't connect to the server. Retrying… · ann"_s);
    nextPoll(ONLINE);
    nextPoll(R"({"ok":true,"online":false})");
    expectLine(u"○ Connecting… · ann"_s); // each outage has its own time
    home.writeConfig(R"({"agentToken":"t","username":"eve"})");
    scheduler.advance(3s);
    expectLine(u"○ Connecting… · eve"_s);
    QFile::remove(home.paths.agentPlist);
    scheduler.advance(3s);
    expectLine(u"Korvel isn't installed correctly. Choose Repair Korvel."_s);
    home.writeConfig("{}");
    scheduler.advance(3s);
    expectLine(u"Not signed in"_s);
}

TEST_F(HealthPollTest, ALostSignInIsReportedOncePerLoss) {
    launchWith(ONLINE);
    // Silence says nothing about the sign-in.
    for (const QByteArray &body : {SIGNED_OUT, SILENCE, SIGNED_OUT, ONLINE, DELETED})
        nextPoll(body);
    EXPECT_EQ(notices.take(), u"You've been signed out. Sign in again. | "
                              "This account was deleted. Sign in with a different account."_s);
    home.writeConfig("{}"); // an unbound Mac has no sign-in
    nextPoll(SIGNED_OUT);
    EXPECT_EQ(notices.take(), u""_s);
    EXPECT_FALSE(health().authDead);
}

TEST_F(HealthPollTest, TheJobOfASilentAgentIsLookedUpOnEveryTickWhileItStartsAndThenEveryTenSeconds) {
    const QString silent = u"○ Korvel isn't responding. Retrying…"_s;
    installAndBind();
    agentResponds(SILENCE);
    services.runs = false; // an unknown result is no pause
    launch();
    scheduler.advance(19s);
    expectLine(u"○ Starting… · ann"_s);
    scheduler.advance(6s);
    EXPECT_GE(lookups(), 8);
    expectLine(silent);
    services.calls.clear();
    services.runs = true;
    scheduler.advance(60s);
    EXPECT_GE(lookups(), 5);
    EXPECT_LE(lookups(), 7);
    services.loaded = false;
    scheduler.hasThreads = false;
    scheduler.advance(40s);
    expectLine(silent);
    scheduler.hasThreads = true;
    scheduler.advance(12s);
    expectLine(u"⏻ Sync paused · ann"_s);
}

TEST_F(HealthPollTest, AHangingServiceManagerTakesOneThreadAndBlocksNothing) {
    scheduler.holdsBackground = true;
    launchWith(ONLINE);
    expectLine(u"● Connected · ann · 1 session"_s);
    agentResponds(SILENCE);
    scheduler.advance(120s);
    EXPECT_FALSE(item.icon.on); // without waiting for the lookup
    expectLine(u"○ Korvel isn't responding. Retrying…"_s);
    nextPoll(ONLINE);
    services.loaded = false;
    scheduler.releaseBackground(); // the late result does not replace the newer response
    EXPECT_EQ(lookups(), 2);       // the first is the launch's
    expectLine(u"● Connected · ann · 1 session"_s);
    EXPECT_EQ(health().jobLoaded, true);
}

TEST_F(HealthPollTest, ALookupFromBeforeAToggleIsDiscarded) {
    launchWith(ONLINE);
    agentResponds(SILENCE);
    scheduler.holdsBackground = true;
    scheduler.advance(12s);
    scheduler.holdsBackground = false; // the lookup goes on waiting
    item.choose(Action::MenuToggle);
    scheduler.advance(1s);
    expectLine(u"⏻ Sync paused · ann"_s);
    scheduler.advance(20s); // later polls wait for the lookup
    services.loaded = true; // its result
    scheduler.releaseBackground();
    expectLine(u"⏻ Sync paused · ann"_s);
}

TEST_F(HealthPollTest, ThreePollsAreInFlightAtMostAndALateResponseDoesNotReplaceANewerOne) {
    launchWith(ONLINE);
    http.respond = nullptr;
    const qsizetype before = requestsTo(u"/health"_s);
    scheduler.advance(30s);
    EXPECT_EQ(requestsTo(u"/health"_s) - before, 3);
    http.complete(1, json(ONLINE));
    http.complete(0, noResponse());
    EXPECT_TRUE(health().running);
    scheduler.advance(6s);
    EXPECT_EQ(requestsTo(u"/health"_s) - before, 5);
}

} // namespace
} // namespace korvel::test
