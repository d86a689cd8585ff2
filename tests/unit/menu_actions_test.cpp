#include "permissions/permission_views.h"
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
        services = {};
        scheduler.hasThreads = true;
        services.loaded = jobLoaded;
        services.failBootstraps = 1; // of the launch
        agentResponds(body);
        launch();
        forget();
    }
    void toggle() { choose(Action::MenuToggle); }
    MenuEntry entry() const { return item.entry(Action::MenuToggle); }
};

TEST_F(SyncToggleTest, APauseCountsOnlyOnceTheJobIsKnownToBeUnloaded) {
    const struct {
        bool stuck, runs, threads;
        milliseconds time;
        int calls;
        QString notice, line;
    } cases[] = {
        {false, true, true, 900ms, 3, u"⏻ Sync paused. Your phone can't see this Mac."_s, PAUSED},
        {true, true, true, 6900ms, 23, NOT_PAUSED, SILENT},
        {false, false, true, 6900ms, 23, NOT_PAUSED, SILENT},
        {false, true, false, 6900ms, 0, NOT_PAUSED, SILENT},
    };
    for (const auto &c : cases) {
        launchWith(ONLINE);
        scheduler.advance(25s); // the agent counts no longer as starting
        agentResponds(SILENCE);
        services.stuck = c.stuck;
        services.runs = c.runs;
        scheduler.hasThreads = c.threads;
        forget();
        toggle();
        EXPECT_EQ(item.statusLine(), u"Switching…"_s);
        EXPECT_FALSE(entry().enabled);
        toggle(); // ignored meanwhile
        scheduler.advance(c.time - 1ms);
        EXPECT_NEAR(static_cast<double>(services.calls.size()), c.calls, 1);
        EXPECT_TRUE(notices.shown.empty());
        scheduler.advance(1ms);
        EXPECT_EQ(notices.last(), c.notice);
        EXPECT_EQ(item.statusLine(), c.line);
        EXPECT_TRUE(entry().enabled);
    }
}

TEST_F(SyncToggleTest, AResumeEnablesAndLoadsTheJobAtTheSecondAttemptAtTheLatest) {
    const QString twice = u"enable bootstrap kickstart print bootstrap kickstart print"_s;
    const struct {
        bool runs;
        int failures;
        milliseconds time;
        QString calls, notice, line;
    } cases[] = {
        {true, 0, 900ms, u"enable bootstrap print"_s, RESUMED, STARTING},
        {true, 1, 2400ms, u"enable bootstrap kickstart print bootstrap print"_s, RESUMED, STARTING},
        {true, 2, 2400ms, twice, NOT_RESUMED, PAUSED},
        {false, 0, 2400ms, twice, NOT_RESUMED, PAUSED},
    };
    for (const auto &c : cases) {
        launchWith(SILENCE, false);
        services.failBootstraps = c.failures;
        services.runs = c.runs;
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

const QByteArray LACKING = R"({"ok":false,"missing":["Mic ","Disk"],"items":[
    {"name":"Screen ","state":"denied","why":"showing the screen\n","breaks":"the phone sees nothing",
     "pane":"x-apple.systempreferences:screen"},
    {"name":"Mic","state":"undetermined","why":"voice input"},
    {"name":"Disk","state":"granted"},
    {"name":"Keys","state":"notrunning"},
    {"name":"Odd","state":"denied","unknown":true},
    {"name":"Told","state":"undetermined","unknown":false},
    {"name":"Late","state":"unknown-timeout","unknown":"no"}]})";
const QByteArray GOOD = R"({"ok":true,"missing":[],"items":[{"name":"Screen","state":"granted"}]})";

struct PermissionsTest : TrayFixture {
    void launchWith(const QByteArray &perms) {
        installAndBind();
        http.respond = [&](const HttpRequest &r) { return json(r.url.endsWith(u"/perms") ? perms : ONLINE); };
        launch();
        http.respond = nullptr;
    }
    const PermissionState &permissions() const { return tray->currentState().permissions; }
    QStringList block() const { return titlesOf(permMenuItems(tray->situation())); }
};

TEST_F(PermissionsTest, EachPermissionIsOneLineAndOnlySettingsAreOpened) {
    launchWith(LACKING);
    EXPECT_EQ(block(),
              (QStringList{u"Permissions · 7 missing"_s, u"⚠ Screen · Not allowed · Used for: showing the screen"_s,
                           u"⚠ Mic · Not requested · Used for: voice input"_s, u"? Disk · Unknown"_s,
                           u"? Keys · Not running, can't check"_s, u"? Odd · Not allowed"_s,
                           u"⚠ Told · Not requested"_s, u"? Late · Unknown"_s, u"Request Permissions…"_s}));
    MenuEntry screen = item.entry(Action::OpenPermPane);
    EXPECT_EQ(screen.detail, u" · Without it: the phone sees nothing"_s);
    EXPECT_EQ(screen.toolTip, u"Without it: the phone sees nothing"_s);
    item.events.chosen(screen);
    EXPECT_EQ(desktop.opened, QStringList{u"x-apple.systempreferences:screen"_s});
    const QScopedValueRollback chinese(ZH, true);
    EXPECT_EQ(block().value(1), u"⚠ Screen · 未授权 · 用于：showing the screen"_s);
    const QStringList addresses{u"x-apple.systempreferences:com.apple.preference.security?Privacy_Camera"_s,
                                u"https://help.example/camera"_s};
    for (const QString &address :
         addresses + QStringList{u"file:///Applications/Odd.app"_s, u"smb://host/share"_s, u"javascript:alert(1)"_s,
                                 u"http://help.example"_s, u"https:camera"_s, u"no address"_s, u"https://x y"_s,
                                 u""_s}) {
        screen.payload = address;
        item.events.chosen(screen);
    }
    screen.payload = 7;
    item.events.chosen(screen);
    EXPECT_EQ(desktop.opened.mid(1), addresses);
}

TEST_F(PermissionsTest, OneFetchIsInFlightAtATimeAndAPartialResponseKeepsTheList) {
    launchWith(LACKING);
    http.respond = [](const HttpRequest &r) { return json(r.url.endsWith(u"/perms") ? LACKING : ONLINE); };
    scheduler.advance(30s);
    EXPECT_EQ(requestsTo(u"/perms"_s), 1);
    scheduler.advance(3s);
    EXPECT_EQ(requestsTo(u"/perms"_s), 2);
    http.respond = nullptr;
    item.events.menuOpening();
    item.events.menuOpening();
    EXPECT_EQ(requestsTo(u"/perms"_s), 3);
    complete(u"/perms"_s, json(R"({"ok":true})"));
    EXPECT_EQ(block().size(), 9);
    EXPECT_EQ(permissions().permsOk, false);
    item.events.menuOpening();
    complete(u"/perms"_s, json(R"({"ok":"yes","missing":["a",1],"items":[{"name":"Screen"}]})"));
    EXPECT_EQ(permissions().permsOk, std::nullopt);
    EXPECT_TRUE(permissions().permsMissing.isEmpty());
    EXPECT_EQ(block().size(), 3);
    item.events.menuOpening();
    EXPECT_EQ(http.last.timeout, 20s);
    scheduler.advance(1s);
    complete(u"/perms"_s, noResponse());
    EXPECT_TRUE(permissions().permsFetchFailed);
    EXPECT_FALSE(permissions().permsFetching);
    EXPECT_EQ(permissions().permsFetchedAt, scheduler.now()); // so that the next poll sends no request
}

TEST_F(PermissionsTest, ARequestTakesLongWhilePollsGoOnAndReportsItsOutcome) {
    const QString failed = u"Couldn't request permissions. Korvel isn't responding. Try again later."_s;
    const auto missing = [](const QString &names) {
        return u"Still missing: "_s + names + u". Turn on korvel-agent in System Settings › Privacy & Security."_s;
    };
    const std::pair<Result<HttpReply>, QString> cases[] = {
        {json(LACKING), missing(u"Mic, Disk"_s)},
        {json(GOOD), u"✓ All permissions granted"_s},
        {json(R"({"ok":true})"), u"Permission request sent."_s},
        {noResponse(), failed},
        {json("nonsense"), failed},
        {json(R"({"ok":"yes","missing":["A"],"items":[]})"), missing(u"A"_s)},
    };
    launchWith(GOOD);
    for (const auto &[reply, notice] : cases) {
        item.choose(Action::AskPerms);
        EXPECT_TRUE(notices.last().startsWith(u"macOS will ask several times."_s));
        EXPECT_EQ(http.last.timeout, 150s);
        EXPECT_TRUE(http.last.body.isEmpty());
        const qsizetype requests = http.paths.size();
        item.choose(Action::AskPerms);
        EXPECT_EQ(http.paths.size(), requests);
        scheduler.advance(3s);
        complete(u"/health"_s, json(ONLINE));
        EXPECT_EQ(item.entry(Action::AskPerms).title, u"Requesting…"_s);
        notices.take();
        complete(u"/perms/request"_s, reply);
        EXPECT_EQ(notices.take(), notice);
        EXPECT_FALSE(permissions().permsRequesting);
    }
    nextPoll(SILENCE);
    EXPECT_EQ(item.entry(Action::AskPerms), MenuEntry());
    item.press(Action::AskPerms);
    EXPECT_EQ(requestsTo(u"/perms/request"_s), 6);
}

TEST_F(PermissionsTest, AFailedRepairIsReportedAndOfferedAgain) {
    int status = 1;
    home.bind();
    placeAgent();
    agentResponds(SILENCE);
    programs.behave = [&](const ProgramRun &run) {
        if (run.arguments.last() != u"install-service")
            return exited(0);
        if (status == 0)
            home.installJobFile();
        services.loaded = status == 0;
        return exited(status, "why");
    };
    launch();
    EXPECT_EQ(item.statusLine(), u"Korvel isn't installed correctly. Reinstall Korvel."_s);
    scheduler.holdsBackground = true;
    item.choose(Action::Repair);
    EXPECT_EQ(item.statusLine(), u"Repairing…"_s);
    EXPECT_EQ(item.entry(Action::Repair), MenuEntry());
    forget();
    item.press(Action::Repair); // in a menu that is still open: joins the repair
    scheduler.releaseBackground();
    EXPECT_EQ(notices.take(), u"Couldn't repair Korvel. Download it from the website and reinstall."_s);
    notices.click();
    EXPECT_EQ(desktop.opened, QStringList{home.fixed.SITE_URL});
    status = 0;
    choose(Action::Repair);
    EXPECT_EQ(notices.last(), u"✓ Repaired"_s);
    EXPECT_EQ(programs.runs.back().timeout, 10min);
    EXPECT_EQ(programs.runs.size(), 6u); // two for each of three repairs
}

} // namespace
} // namespace korvel::test
