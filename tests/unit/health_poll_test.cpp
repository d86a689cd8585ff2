#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

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
    const auto noticesAfter = [&](const QByteArray &body) {
        nextPoll(body);
        return notices.shown.size();
    };
    EXPECT_EQ(noticesAfter(SIGNED_OUT), 1u);
    EXPECT_EQ(notices.last(), u"You've been signed out. Sign in again."_s);
    nextPoll(SILENCE); // which says nothing about the sign-in
    EXPECT_EQ(noticesAfter(SIGNED_OUT), 1u);
    EXPECT_EQ(noticesAfter(ONLINE), 1u);
    EXPECT_EQ(noticesAfter(R"({"ok":true,"authDead":true,"accountGone":true})"), 2u);
    EXPECT_EQ(notices.last(), u"This account was deleted. Sign in with a different account."_s);
    home.writeConfig("{}"); // an unbound Mac has no sign-in
    EXPECT_EQ(noticesAfter(SIGNED_OUT), 2u);
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
    launchWith(ONLINE);
    agentResponds(SILENCE);
    scheduler.holdsBackground = true;
    scheduler.advance(120s);
    EXPECT_FALSE(item.icon.on); // without waiting for the lookup
    expectLine(u"○ Korvel isn't responding. Retrying…"_s);
    nextPoll(ONLINE);
    services.loaded = false;
    scheduler.releaseBackground(); // the late result does not replace the newer response
    EXPECT_EQ(lookups(), 1);
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
