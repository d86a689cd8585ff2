#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

struct HealthPollTest : TrayFixture {
    int jobChecks() const { return static_cast<int>(services.calls.filter(u"print"_s).size()); }
    /// Launches a bound Mac whose agent answers `body`, past the grace of the launch.
    void launchWith(const QByteArray &body) {
        launchBound(body);
        scheduler.advance(25s);
        services.calls.clear();
        notices.shown.clear();
    }
};

TEST_F(HealthPollTest, AnAnswerIsCopiedIntoTheState) {
    launchWith(
        R"({"ok":true,"online":true,"ver":"a/korvel-agent/1.4.2","e2ee":{"state":"active"},
                   "perms":{"ok":false,"missing":["Mic"]}})");
    EXPECT_TRUE(health().running && health().online);
    EXPECT_EQ(http.last.url, u"http://127.0.0.1:8790/health"_s);
    EXPECT_EQ(http.last.timeout, 2s);
    EXPECT_EQ(health().agentVer, u"1.4.2"_s);
    EXPECT_EQ(health().account, u"ann"_s); // from the configuration
    EXPECT_EQ(health().sessions, 0);
    EXPECT_EQ(tray->currentState().permissions.permsMissing, QStringList{u"Mic"_s});
    nextPoll(R"({"ok":true,"ver":"9","account":"bob","sessions":3,"perms":{"ok":1,"missing":["a",2]}})");
    EXPECT_EQ(health().agentVer, u"1.4.2"_s);
    EXPECT_EQ(health().account, u"bob"_s);
    EXPECT_EQ(health().sessions, 3);
    EXPECT_FALSE(health().online);
    EXPECT_TRUE(tray->currentState().e2ee.e2.isEmpty());
    EXPECT_EQ(tray->currentState().permissions.permsOk, std::nullopt);
    EXPECT_TRUE(tray->currentState().permissions.permsMissing.isEmpty());
}

TEST_F(HealthPollTest, OnlyABoundedPartOfAFloodBecomesState) {
    const QByteArray text(100'000, 'x'), names = "\"" + text.left(2000) + "\"" + QByteArray(",\"n\"").repeated(999);
    const QByteArray entries = "{}" + QByteArray(",{}").repeated(999);
    launchWith(R"({"ok":true,"account":")" + text + R"(","ver":"a/)" + text + R"(","perms":{"missing":[)" + names +
               R"(],"ok":false,"items":[)" + entries + R"(]},"e2ee":{"state":"active","pending":[)" + entries +
               R"(],"alarms":[)" + entries + "]}}");
    EXPECT_EQ(health().account.size(), 1000);
    EXPECT_LE(health().agentVer.size(), 1000);
    const PermissionState &permissions = tray->currentState().permissions;
    EXPECT_EQ(permissions.permsMissing.size(), 64);
    EXPECT_EQ(permissions.permsMissing.first().size(), 1000);
    agentAnswers(R"({"ok":false,"items":[)" + entries + "]}");
    item.events.menuOpening();
    EXPECT_EQ(permissions.permItems.size(), 64);
    EXPECT_LT(item.menu.entries.size(), 3 * 64 + 20);
}

TEST_F(HealthPollTest, AnAnswerThatIsTheLastOneAgainLeavesWhatElseChanges) {
    launchWith(R"({"ok":true,"online":false})");
    EXPECT_EQ(item.statusLine(), u"○ Connecting… · ann"_s);
    scheduler.advance(39s); // by the clock alone
    EXPECT_EQ(item.statusLine(), u"○ Can't connect to the server. Retrying… · ann"_s);
    home.writeConfig(R"({"agentToken":"t","username":"eve"})");
    scheduler.advance(3s);
    EXPECT_EQ(item.statusLine(), u"○ Can't connect to the server. Retrying… · eve"_s);
    QFile::remove(home.paths.agentPlist);
    scheduler.advance(3s);
    EXPECT_EQ(item.statusLine(), u"Korvel isn't installed correctly. Choose Repair Korvel."_s);
    home.writeConfig("{}");
    scheduler.advance(3s);
    EXPECT_EQ(item.statusLine(), u"Not signed in"_s);
}

TEST_F(HealthPollTest, ALossOfTheSignInIsToldOncePerLoss) {
    launchWith(ONLINE);
    const auto after = [&](const QByteArray &body) {
        nextPoll(body);
        return notices.shown.size();
    };
    EXPECT_EQ(after(SIGNED_OUT), 1u);
    EXPECT_EQ(notices.last(), u"You've been signed out. Sign in again."_s);
    EXPECT_EQ(after(SIGNED_OUT), 1u);
    agentIsSilent(); // silence is no sign of life of the sign-in
    scheduler.advance(3s);
    EXPECT_EQ(after(SIGNED_OUT), 1u);
    EXPECT_EQ(after(ONLINE), 1u);
    EXPECT_EQ(after(R"({"ok":true,"authDead":true,"accountGone":true})"), 2u);
    EXPECT_EQ(notices.last(), u"This account was deleted. Sign in with a different account."_s);
    home.writeConfig("{}"); // an unbound Mac has none to lose
    EXPECT_EQ(after(SIGNED_OUT), 2u);
    EXPECT_FALSE(health().authDead);
}

TEST_F(HealthPollTest, TheJobOfASilentAgentIsLookedAtOnEveryTickWhileItStartsAndThenEveryTenSecondsOnly) {
    installAndBind();
    agentIsSilent();
    launch();
    const int before = jobChecks();
    scheduler.advance(9s);
    EXPECT_GE(jobChecks() - before, 3);
    EXPECT_EQ(item.statusLine(), u"○ Starting… · ann"_s);
    scheduler.advance(16s);
    EXPECT_EQ(item.statusLine(), u"○ Korvel isn't responding. Retrying…"_s);
    services.calls.clear();
    scheduler.advance(60s);
    EXPECT_GE(jobChecks(), 5);
    EXPECT_LE(jobChecks(), 7);
    services.loaded = false;
    scheduler.advance(12s);
    EXPECT_EQ(item.statusLine(), u"⏻ Sync paused · ann"_s);
}

TEST_F(HealthPollTest, AServiceManagerThatHangsTakesOneThreadAndBlocksNothing) {
    launchWith(ONLINE);
    agentIsSilent();
    scheduler.holdBackground(true);
    scheduler.advance(120s);
    EXPECT_EQ(scheduler.backgroundWaiting(), 1u);
    EXPECT_FALSE(item.icon.on); // shown at once, without waiting for the look
    EXPECT_EQ(item.statusLine(), u"○ Korvel isn't responding. Retrying…"_s);
    nextPoll(ONLINE);
    services.loaded = false;
    scheduler.holdBackground(false); // the late look must not undo what a good answer said since
    EXPECT_EQ(item.statusLine(), u"● Connected · ann · 1 session"_s);
    EXPECT_EQ(health().jobLoaded, true);
}

TEST_F(HealthPollTest, ALookThatFindsNothingOutIsNoPause) {
    installAndBind();
    agentIsSilent();
    services.runs = false;
    launch();
    scheduler.advance(40s);
    EXPECT_EQ(item.statusLine(), u"○ Korvel isn't responding. Retrying…"_s);
    services.runs = true;
    services.loaded = false;
    scheduler.haveThreads(false);
    scheduler.advance(40s);
    EXPECT_EQ(item.statusLine(), u"○ Korvel isn't responding. Retrying…"_s);
    scheduler.haveThreads(true);
    scheduler.advance(12s); // looked at again, though the one before got nowhere
    EXPECT_EQ(item.statusLine(), u"⏻ Sync paused · ann"_s);
}

TEST_F(HealthPollTest, ALookThatBeganBeforeAToggleSaysNothingAfterIt) {
    launchWith(ONLINE);
    agentIsSilent();
    scheduler.holdBackground(true);
    scheduler.advance(12s);
    scheduler.hangBackground(); // the look
    scheduler.holdBackground(false);
    item.choose(Action::MenuToggle);
    scheduler.advance(1s);
    EXPECT_EQ(item.statusLine(), u"⏻ Sync paused · ann"_s);
    scheduler.advance(20s); // later polls join the look
    services.loaded = true; // as the look found it
    scheduler.letGoBackground();
    EXPECT_EQ(item.statusLine(), u"⏻ Sync paused · ann"_s);
}

TEST_F(HealthPollTest, TicksPauseWhileThreePollsAreOpen) {
    launchWith(ONLINE);
    http.answer = nullptr;
    scheduler.advance(30s);
    const auto openPolls = [this] {
        return std::count_if(http.open.begin(), http.open.end(),
                             [](const auto &sent) { return sent.request.url.endsWith(u"/health"); });
    };
    EXPECT_EQ(openPolls(), 3);
    http.reply(0, json(ONLINE));
    scheduler.advance(3s);
    EXPECT_EQ(openPolls(), 3);
}

TEST_F(HealthPollTest, ALateAnswerDoesNotUndoANewerOne) {
    launchWith(ONLINE);
    http.answer = nullptr;
    scheduler.advance(6s);
    ASSERT_EQ(http.open.size(), 2u);
    http.reply(1, json(ONLINE));
    http.reply(0, noAnswer());
    EXPECT_TRUE(health().running);
}

TEST(HealthRules, AnObjectWhoseOkIsTrueIsAnAnswerAndNothingElse) {
    EXPECT_TRUE(healthResponse(object(R"({"ok":true})")));
    for (const char *other : {R"({"ok":false,"online":true})", R"({"ok":"true"})", R"({"ok":1})", "{}"})
        EXPECT_FALSE(healthResponse(object(other)));
    EXPECT_FALSE(healthResponse(Error{ErrorKind::UnreadableResponse, {}}));
}

TEST(HealthRules, SilenceForgetsWhatOnlyARunningAgentKnows) {
    const Instant now(1h);
    TrayState state;
    state.health.running = state.health.online = true;
    state.health.connectingSince = now - 5s;
    state.health.jobLoaded = true;
    state.health.jobCheckedAt = now - 10s;
    state.permissions = {.permsOk = false,
                         .permsMissing = {u"a"_s},
                         .permItems = {QJsonObject()},
                         .permsFetchedAt = now,
                         .permsFetchFailed = true};
    const auto effects = [&] { return applyHealth(state, Error{}, {.now = now, .bound = true, .username = u"ann"_s}); };
    EXPECT_FALSE(effects().checkJob); // looked at ten seconds ago, and no longer
    EXPECT_FALSE(state.health.running || state.health.online || state.health.connectingSince);
    const PermissionState &p = state.permissions;
    EXPECT_FALSE(p.permsOk || p.permsFetchedAt || p.permsFetchFailed);
    EXPECT_TRUE(p.permsMissing.isEmpty() && p.permItems.isEmpty());
    state.health.jobLoaded.reset();
    EXPECT_TRUE(effects().checkJob);
    EXPECT_EQ(state.health.jobCheckedAt, now);
}

TEST(HealthRules, ThePermissionListIsDueAfterThirtySecondsAndOnlyWhileTheAgentAnswers) {
    const Instant now(1h);
    TrayState state;
    const auto due = [&](std::optional<Instant> fetchedAt, bool answered) {
        state.permissions.permsFetchedAt = fetchedAt;
        const auto answer = answered ? Result(QJsonObject{{u"ok"_s, true}}) : Error{};
        return applyHealth(state, answer, {.now = now, .bound = true, .username = {}}).fetchPerms;
    };
    EXPECT_TRUE(due(std::nullopt, true));
    EXPECT_FALSE(due(now - 30s, true));
    EXPECT_TRUE(due(now - 31s, true));
    EXPECT_FALSE(due(std::nullopt, false));
}

TEST_F(HealthPollTest, NothingIsSetAgainWhileNothingChanges) {
    launchWith(ONLINE);
    const int icons = item.iconChanges, menus = item.menuChanges;
    scheduler.advance(300s);
    EXPECT_EQ(item.iconChanges, icons);
    EXPECT_EQ(item.menuChanges, menus);
    agentAnswers(OFFLINE);
    scheduler.advance(30s);
    EXPECT_EQ(item.iconChanges, icons + 1);
    EXPECT_EQ(item.menuChanges, menus + 1);
    EXPECT_EQ(item.statusLine(), u"○ Connecting… · ann"_s);
    scheduler.advance(60s);
    EXPECT_EQ(item.statusLine(), u"○ Can't connect to the server. Retrying… · ann"_s);
    for (const QByteArray &next : {ONLINE, OFFLINE}) {
        nextPoll(next);
    }
    EXPECT_EQ(item.statusLine(), u"○ Connecting… · ann"_s); // each outage has its own time
}

} // namespace
} // namespace korvel::test
