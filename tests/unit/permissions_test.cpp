#include "permissions/permission_views.h"
#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

const QByteArray ITEMS = R"([
    {"name":"Screen ","state":"denied","why":"showing the screen\n","breaks":"the phone sees nothing",
     "pane":"x-apple.systempreferences:screen"},
    {"name":"Mic","state":"undetermined","why":"voice input"},
    {"name":"Disk","state":"granted"},
    {"name":"Keys","state":"notrunning"},
    {"name":"Odd","state":"denied","unknown":true},
    {"name":"Told","state":"undetermined","unknown":false},
    {"name":"Late","state":"unknown-timeout","unknown":"no"}])";
const QByteArray LACKING = R"({"ok":false,"missing":["Mic ","Disk"],"items":)" + ITEMS + '}';
const QByteArray GOOD = R"({"ok":true,"missing":[],"items":[{"name":"Screen","state":"granted"}]})";

struct PermissionsTest : TrayFixture {
    QByteArray perms = GOOD;

    void launchWith(const QByteArray &first) {
        perms = first;
        installAndBind();
        launch();
        http.answer = nullptr;
    }
    void SetUp() override {
        http.answer = [this](const HttpRequest &r) { return json(r.url.endsWith(u"/perms") ? perms : ONLINE); };
    }
    const PermissionState &permissions() const { return tray->currentState().permissions; }
    QStringList block() const {
        QStringList titles;
        for (const MenuEntry &entry : item.menu.entries)
            if (entry.action == Action::OpenPermPane)
                titles.append(entry.title);
        return titles;
    }
};

TEST_F(PermissionsTest, EachPermissionIsOneLineWithNoWordThatTheAgentDidNotSay) {
    launchWith(LACKING);
    EXPECT_EQ(block(), (QStringList{u"⚠ Screen · Not allowed · Used for: showing the screen"_s,
                                    u"⚠ Mic · Not requested · Used for: voice input"_s, u"? Disk · Unknown"_s,
                                    u"? Keys · Not running, can't check"_s, u"? Odd · Not allowed"_s,
                                    u"⚠ Told · Not requested"_s, u"? Late · Unknown"_s}));
    const MenuEntry screen = item.entry(Action::OpenPermPane);
    EXPECT_EQ(screen.detail, u" · Without it: the phone sees nothing"_s);
    EXPECT_EQ(screen.toolTip, u"Without it: the phone sees nothing"_s);
    const LanguageScope chinese(true);
    EXPECT_EQ(permMenuItems(tray->situation()).value(1).title, u"⚠ Screen · 未授权 · 用于：showing the screen"_s);
}

TEST_F(PermissionsTest, OneFetchAtATimeAndAPartialReplyKeepsTheLastGoodList) {
    launchWith(LACKING);
    const int fetches = requestsTo(u"/perms"_s);
    EXPECT_EQ(fetches, 1);
    item.events.menuOpening();
    item.events.menuOpening();
    EXPECT_EQ(requestsTo(u"/perms"_s), fetches + 1);
    answerOpen(u"/perms"_s, json(R"({"ok":true})"));
    EXPECT_EQ(block().size(), 7);
    EXPECT_EQ(permissions().permsOk, false);
    EXPECT_EQ(permissions().permsFetchedAt, scheduler.now());
    item.events.menuOpening();
    answerOpen(u"/perms"_s, json(R"({"ok":"yes","missing":["a",1],"items":[{"name":"Screen"}]})"));
    EXPECT_EQ(permissions().permsOk, std::nullopt);
    EXPECT_TRUE(permissions().permsMissing.isEmpty());
    EXPECT_EQ(block().size(), 1);
    item.events.menuOpening();
    EXPECT_EQ(http.open.back().request.timeout, 20s);
    scheduler.advance(1s);
    answerOpen(u"/perms"_s, noAnswer());
    EXPECT_TRUE(permissions().permsFetchFailed);
    EXPECT_FALSE(permissions().permsFetching);
    EXPECT_EQ(permissions().permsFetchedAt, scheduler.now()); // so that not every poll asks again
}

TEST_F(PermissionsTest, ARequestMayBeOpenForLongWhileEverythingElseGoesOn) {
    launchWith(GOOD);
    item.choose(Action::AskPerms);
    EXPECT_TRUE(notices.last().startsWith(u"macOS will ask several times."_s));
    item.choose(Action::AskPerms);
    EXPECT_EQ(requestsTo(u"/perms/request"_s), 1);
    EXPECT_EQ(http.open.back().request.timeout, 150s);
    EXPECT_TRUE(http.open.back().request.body.isEmpty());
    const int polls = requestsTo(u"/health"_s);
    for (int poll = 0; poll < 33; ++poll) {
        scheduler.advance(3s);
        answerOpen(u"/health"_s, json(ONLINE));
    }
    EXPECT_GE(requestsTo(u"/health"_s), polls + 33);
    EXPECT_EQ(item.entry(Action::AskPerms).title, u"Requesting…"_s);
    answerOpen(u"/perms/request"_s, json(LACKING));
    EXPECT_EQ(notices.last(),
              u"Still missing: Mic, Disk. Turn on korvel-agent in System Settings › Privacy & Security."_s);
    EXPECT_EQ(item.entry(Action::AskPerms).title, u"Request Permissions…"_s);
}

TEST_F(PermissionsTest, EachOutcomeOfARequestIsTold) {
    const struct {
        Result<HttpReply> reply;
        QString notice;
        bool error;
    } cases[] = {
        {json(GOOD), u"✓ All permissions granted"_s, false},
        {json(R"({"ok":true})"), u"Permission request sent."_s, false},
        {noAnswer(), u"Couldn't request permissions. Korvel isn't responding. Try again later."_s, true},
        {json("nonsense"), u"Couldn't request permissions. Korvel isn't responding. Try again later."_s, true},
        {json(R"({"ok":"yes","missing":["A"],"items":[]})"),
         u"Still missing: A. Turn on korvel-agent in System Settings › Privacy & Security."_s, true},
    };
    launchWith(GOOD);
    for (const auto &c : cases) {
        item.choose(Action::AskPerms);
        notices.shown.clear();
        answerOpen(u"/perms/request"_s, c.reply);
        ASSERT_EQ(notices.shown.size(), 1u);
        EXPECT_EQ(notices.last(), c.notice);
        EXPECT_EQ(notices.shown.back().error, c.error);
        EXPECT_FALSE(permissions().permsRequesting);
    }
    agentIsSilent();
    scheduler.advance(3s);
    const int requests = requestsTo(u"/perms/request"_s);
    item.press(Action::AskPerms);
    EXPECT_EQ(requestsTo(u"/perms/request"_s), requests);
}

TEST_F(PermissionsTest, OnlyAnAddressOfSettingsIsOpened) {
    launchWith(LACKING);
    const QStringList addresses{u"x-apple.systempreferences:com.apple.preference.security?Privacy_Camera"_s,
                                u"https://help.example/camera"_s};
    MenuEntry pane = item.entry(Action::OpenPermPane);
    for (const QJsonValue &address :
         {QJsonValue(addresses[0]), QJsonValue(addresses[1]), QJsonValue(u"file:///Applications/Odd.app"_s),
          QJsonValue(u"smb://host/share"_s), QJsonValue(u"javascript:alert(1)"_s), QJsonValue(u"http://help.example"_s),
          QJsonValue(u"https:camera"_s), QJsonValue(u"no address"_s), QJsonValue(u"https://x y"_s), QJsonValue(u""_s),
          QJsonValue(7), QJsonValue(QJsonValue::Undefined)}) {
        pane.payload = address;
        item.events.chosen(pane);
    }
    EXPECT_EQ(desktop.opened, addresses);
}

struct RepairTest : TrayFixture {
    int serviceStatus = 0;
    bool writesJobFile = true;

    void SetUp() override {
        home.bind();
        placeAgent();
        agentIsSilent();
        programs.answer = [this](const ProgramRun &run) {
            const bool service = run.arguments.last() == u"install-service";
            if (service && writesJobFile)
                home.installJobFile();
            services.loaded = services.loaded || (service && serviceStatus == 0);
            return ProgramResult{
                .status = service ? serviceStatus : 0, .launched = true, .output = "why", .launchError = {}};
        };
    }
};

TEST_F(RepairTest, AFailedRepairSaysSoAndTheMenuOffersItAgain) {
    serviceStatus = 1;
    writesJobFile = false;
    launch();
    EXPECT_EQ(item.statusLine(), u"Korvel isn't installed correctly. Reinstall Korvel."_s);
    scheduler.holdBackground(true);
    item.choose(Action::Repair);
    EXPECT_EQ(item.statusLine(), u"Repairing…"_s);
    EXPECT_EQ(item.entry(Action::Repair), MenuEntry());
    notices.shown.clear();
    item.press(Action::Repair); // of a menu that was opened before: no verdict yet
    EXPECT_TRUE(notices.shown.empty());
    scheduler.holdBackground(false);
    scheduler.runDue();
    EXPECT_EQ(notices.last(), u"Couldn't repair Korvel. Download it from the website and reinstall."_s);
    notices.click();
    EXPECT_EQ(desktop.opened, QStringList{home.fixed.SITE_URL});
    serviceStatus = 0;
    writesJobFile = true;
    item.choose(Action::Repair);
    scheduler.runDue();
    EXPECT_EQ(notices.last(), u"✓ Repaired"_s);
    EXPECT_EQ(programs.runs.back().timeout, 10min);
    EXPECT_EQ(programs.runs.size(), 6u); // two a repair: of those asked for meanwhile none
}

} // namespace
} // namespace korvel::test
