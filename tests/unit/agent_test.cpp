#include "service/agent_api.h"
#include "service/agent_command.h"
#include "service/agent_config.h"
#include "service/launchctl.h"
#include "service/login_item.h"
#include "support/full_disk.h"
#include "support/tray_fixture.h"

#include <QXmlStreamReader>
#include <sys/stat.h>

namespace korvel::test {
namespace {

struct AgentApiTest : TrayFixture {
    AgentConfig config{home.paths};
    AgentApi api{http, home.fixed, config};

    HttpRequest sent(const AgentRequest &request = {.path = u"/health"_s, .timeout = 2s, .repeats = true}) {
        api.send(request, Done<QJsonObject>([](Result<QJsonObject>) {}));
        return http.last;
    }
};

TEST_F(AgentApiTest, ARequestGoesToTheLoopbackWithTheCurrentToken) {
    EXPECT_TRUE(sent().headers.isEmpty());
    for (const QByteArray &token : {"one"_ba, "two"_ba}) {
        home.writeConfig(R"({"localToken":")" + token + "\"}");
        EXPECT_EQ(sent().headers, (QList{std::pair("X-Korvel-Token"_ba, token)}));
    }
    for (const char *unusable : {R"({"localToken":""})", R"({"localToken":5})", R"(["localToken"])"}) {
        home.writeConfig(unusable);
        EXPECT_TRUE(sent().headers.isEmpty()) << unusable;
    }
    const HttpRequest post =
        sent({.method = "POST", .path = u"/e2ee/reject"_s, .body = QJsonObject{{u"id"_s, u"p 1"_s}}, .timeout = 60s});
    EXPECT_EQ(post, (HttpRequest{.method = "POST",
                                 .url = u"http://127.0.0.1:8790/e2ee/reject"_s,
                                 .headers = {{"Content-Type", "application/json"}},
                                 .body = R"({"id":"p 1"})",
                                 .timeout = 60s,
                                 .maxBytes = 512 << 10}));
}

TEST_F(AgentApiTest, OnlyAJsonObjectIsAResponseWhateverTheStatus) {
    EXPECT_EQ(parseAgentReply({401, R"({"ok":false})"}).value().value(u"ok"), QJsonValue(false));
    const QByteArray deep = R"({"ok":true,"x":)" + QByteArray(100000, '[') + QByteArray(100000, ']') + '}';
    for (const QByteArray &body : {"[1]"_ba, "<html>"_ba, ""_ba, "{\"ok\":tr"_ba, "{\"a\":\"\xff\xfe\"}"_ba, deep})
        EXPECT_FALSE(parseAgentReply({200, body}).ok()) << body.left(40).constData();
}

TEST(AgentCommandOutput, TheLastLineThatBeginsAnObjectIsTheReply) {
    const std::pair<QByteArray, int> cases[] = {
        {"log line\n{\"n\":1}\n\n", 1},
        {"{\"n\":1}\n{\"n\":2}", 2},
        {"{\"n\":1}\n \t{\"n\":2} \t\nbye", 2},
        {"{\"n\":1}\n[{\"n\":2}]\n", 1},
        {"{\"n\":1}\n{broken", -1},
        {"{\n\"n\":1}", -1},
        {"\xff\n{\"n\":1}", -1},
        {"", -1},
    };
    for (const auto &[output, n] : cases) {
        const auto reply = parseAgentJson(output);
        EXPECT_EQ(reply ? reply.value().value(u"n").toInt() : -1, n) << output.constData();
    }
}

struct AgentCommandTest : TrayFixture {
    AgentCommand command(std::optional<QString> agentBin) {
        return {programs, scheduler, home.home(), std::move(agentBin)};
    }
};

TEST_F(AgentCommandTest, TheBundledAgentWinsOverTheOverride) {
    EXPECT_EQ(command(std::nullopt).agentForCLI(), std::nullopt);
    EXPECT_EQ(command(u""_s).agentForCLI(), std::nullopt);
    EXPECT_EQ(command(u"/a/agent"_s).agentForCLI(), (AgentLocation{u"/a/agent"_s, {}}));
    EXPECT_EQ(command(u"/a/agent.mjs"_s).agentForCLI(),
              (AgentLocation{u"/usr/bin/env"_s, {u"node"_s, u"/a/agent.mjs"_s}}));
    const QString bundled = home.home() + u"/Contents/Resources/korvel-agent"_s;
    home.write(bundled, ""); // not executable
    EXPECT_EQ(command(u"/a/agent"_s).agentForCLI()->executable, u"/a/agent"_s);
    placeAgent();
    EXPECT_EQ(command(u"/a/agent"_s).agentForCLI(), (AgentLocation{bundled, {}}));
}

TEST_F(AgentCommandTest, TheRequestGoesThroughStandardInputAndTheReplyComesOnce) {
    programs.result.output = "{\"ok\":true}\n";
    AgentCommand agent = command(u"/a/agent.mjs"_s), none = command(std::nullopt);
    int replies = 0, failures = 0;
    const QScopedValueRollback chinese(ZH, true);
    agent.runAgentJson({{u"password"_s, u"p"_s}},
                       [&](const auto &reply) { replies += reply && reply->value(u"ok").toBool(); });
    none.runAgentJson({}, [&](const auto &reply) { failures += !reply; });
    EXPECT_EQ(replies + failures, 0); // not at once
    scheduler.runDue();
    EXPECT_EQ(std::pair(replies, failures), std::pair(1, 1));
    const ProgramRun run = programs.runs.at(0);
    EXPECT_EQ(run.arguments, (QStringList{u"node"_s, u"/a/agent.mjs"_s, u"login"_s, u"--stdin-json"_s}));
    EXPECT_EQ(run.input, R"({"password":"p"})");
    EXPECT_EQ(run.extraEnvironment.value(0), std::pair(u"KORVEL_LANG"_s, u"zh"_s));
    EXPECT_EQ(run.timeout, 60s);
    EXPECT_EQ(run.collect, ProgramRun::Collect::StandardOutput);
}

TEST(Launchctl, OnlyAnExitStatusShowsHowACommandEnded) {
    FakePrograms programs;
    const ProgramResult notLaunched{.output = {}, .launchError = u"none"_s};
    for (const auto &[ending, result] : {std::pair(exited(0), ServiceResult::Succeeded),
                                         {exited(113), ServiceResult::Failed},
                                         {exited(-1), ServiceResult::Unknown},
                                         {notLaunched, ServiceResult::Unknown}}) {
        programs.result = ending;
        EXPECT_EQ(Launchctl(programs, 501).kickstart(u"a.b"_s), result);
    }
    EXPECT_EQ(programs.runs.at(0).arguments, (QStringList{u"kickstart"_s, u"-k"_s, u"gui/501/a.b"_s}));
    EXPECT_EQ(programs.runs.at(0).timeout, 30s);
}

TEST(LoginItem, IsWrittenOnceAndOnlyForAnInstalledProgram) {
    const TestHome home;
    ensureTrayLoginItem(home.paths, home.home() + u"/Applications/Korvel.app/Contents/MacOS/korvel-tray"_s);
    EXPECT_FALSE(QFile::exists(home.paths.trayPlist));
    const QString installed = u"/Applications/A & <B>/korvel-tray"_s;
    {
        const FullDisk full(100);
        ensureTrayLoginItem(home.paths, installed);
    }
    EXPECT_FALSE(QFile::exists(home.paths.trayPlist)); // no half of it
    ensureTrayLoginItem(home.paths, installed);
    const QByteArray text = home.read(home.paths.trayPlist);
    QXmlStreamReader xml(text);
    while (!xml.atEnd())
        xml.readNext();
    EXPECT_FALSE(xml.hasError());
    EXPECT_TRUE(text.contains("<key>Label</key><string>com.korvel.tray</string>\n"
                              "  <key>ProgramArguments</key>"
                              "<array><string>/Applications/A &amp; &lt;B&gt;/korvel-tray</string></array>\n"
                              "  <key>RunAtLoad</key><true/>\n  <key>StandardErrorPath</key><string>"))
        << text.constData();
    EXPECT_EQ(QFile::permissions(home.paths.trayPlist), QFile::Permissions(0x6644));
    home.write(home.paths.trayPlist, "edited");
    ensureTrayLoginItem(home.paths, installed);
    EXPECT_EQ(home.read(home.paths.trayPlist), "edited");
}

struct AgentConfigTest : ::testing::Test {
    TestHome home;
    AgentConfig config{home.paths};
};

TEST_F(AgentConfigTest, AnythingButASmallJsonObjectReadsAsEmpty) {
    EXPECT_EQ(config.readCfg(), AgentCfg());
    for (const QByteArray &content :
         {"[1,2]"_ba, R"({"agentToken":7})"_ba, "{\"agentToken\":\"t\""_ba, QByteArray("\0\1\2\xff", 4), ""_ba,
          "{\"agentToken\":\"" + QByteArray(2 << 20, 'x') + "\"}"}) {
        home.writeConfig(content);
        EXPECT_EQ(config.readCfg(), AgentCfg());
    }
    QFile::remove(home.paths.agentCfg);
    QDir().mkpath(home.paths.agentCfg);
    EXPECT_EQ(config.readCfg(), AgentCfg());
    config.writeCfg({{u"a"_s, 1}});
    EXPECT_TRUE(QFileInfo(home.paths.agentCfg).isDir());
    QDir().rmdir(home.paths.agentCfg);
    ASSERT_EQ(::mkfifo(QFile::encodeName(home.paths.agentCfg).constData(), 0600), 0);
    EXPECT_EQ(config.readCfg(), AgentCfg()); // without waiting for a writer
}

TEST_F(AgentConfigTest, AChangeByAnotherProgramIsReadAtOnce) {
    home.writeConfig(R"({"username":"ann"})");
    EXPECT_EQ(config.readCfg().username, u"ann"_s);
    // In place, of the same size, and perhaps within one tick of the file system's clock.
    home.writeConfig(R"({"username":"bob"})");
    EXPECT_EQ(config.readCfg().username, u"bob"_s);
    const AgentConfig anHourLater(home.paths, [] { return std::time(nullptr) + 3600; });
    for (int reading = 0; reading < 2; ++reading)
        EXPECT_EQ(anHourLater.readCfg().username, u"bob"_s);
    replacePrivateFile(home.paths.agentCfg, R"({"username":"eve"})");
    {
        const LoweredLimit noDescriptors(RLIMIT_NOFILE, 0); // the content read last stays
        EXPECT_EQ(anHourLater.readCfg().username, u"bob"_s);
    }
    EXPECT_EQ(anHourLater.readCfg().username, u"eve"_s);
    QFile::remove(home.paths.agentCfg);
    EXPECT_EQ(anHourLater.readCfg(), AgentCfg());
}

TEST_F(AgentConfigTest, AWriteIsPrivateWholeAndBehindALink) {
    config.writeCfg({{u"username"_s, u"ann"_s}});
    EXPECT_EQ(QFile::permissions(home.paths.cfgDir), QFile::Permissions(0x7700));
    EXPECT_EQ(QFile::permissions(home.paths.agentCfg), QFile::Permissions(0x6600));
    {
        const FullDisk full(100);
        config.writeCfg({{u"b"_s, QString(500, u'x')}});
    }
    EXPECT_EQ(config.readCfg().username, u"ann"_s);
    EXPECT_EQ(QDir(home.paths.cfgDir).entryList(QDir::Files | QDir::Hidden), QStringList{u"agent.json"_s});
    const QString real = home.home() + u"/elsewhere.json"_s;
    home.write(real, "{}");
    QFile::setPermissions(real, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
    QFile::remove(home.paths.agentCfg);
    ASSERT_TRUE(QFile::link(real, home.paths.agentCfg));
    config.writeCfg({{u"username"_s, u"bob"_s}});
    EXPECT_TRUE(QFileInfo(home.paths.agentCfg).isSymLink());
    EXPECT_EQ(config.readCfg().username, u"bob"_s);
    EXPECT_EQ(QFile::permissions(real), QFile::Permissions(0x6600));
}

using AgentControlTest = TrayFixture;

TEST_F(AgentControlTest, LaunchLoadsTheJobUnlessItIsLoaded) {
    agentResponds(SILENCE);
    home.bind();
    home.installJobFile();
    launch();
    EXPECT_EQ(services.calls.mid(0, 2),
              (QStringList{u"print com.korvel.agent"_s, u"bootstrap com.korvel.agent.plist"_s}));
    EXPECT_EQ(health().startingUntil, scheduler.now() + 25s);
    services.calls.clear();
    launch();
    EXPECT_FALSE(services.calls.contains(u"bootstrap com.korvel.agent.plist"_s));
}

TEST_F(AgentControlTest, QuittingStopsTheAgentAndItsStraysFirst) {
    launchBound();
    item.press(Action::QuitAll);
    item.press(Action::QuitAll);
    EXPECT_EQ(notices.last(), u"⏻ Quitting…"_s);
    EXPECT_EQ(desktop.terminated, 0);
    scheduler.runDue();
    EXPECT_EQ(services.calls, (QStringList{u"bootout com.korvel.agent"_s, u"bootout com.korvel.tray"_s}));
    ASSERT_EQ(programs.runs.size(), 2u);
    EXPECT_EQ(programs.runs[0].executable, u"/usr/bin/pkill"_s);
    EXPECT_EQ(programs.runs[0].arguments, (QStringList{u"-f"_s, u"Korvel.app/Contents/Resources/korvel-agent"_s}));
    EXPECT_EQ(programs.runs[1].arguments, (QStringList{u"-f"_s, u"korvel-agent.mjs run"_s}));
    EXPECT_EQ(desktop.terminated, 1);
    launch();
    scheduler.holdsBackground = true;
    item.press(Action::QuitAll);
    scheduler.advance(30s); // the service manager hangs
    EXPECT_EQ(desktop.terminated, 2);
}

TEST_F(AgentControlTest, TheLogIsOpenedWhenThereIsOne) {
    launch();
    item.press(Action::OpenLog);
    EXPECT_EQ(notices.last(), u"No log yet"_s);
    home.write(home.paths.logFile, "line");
    item.press(Action::OpenLog);
    EXPECT_EQ(desktop.opened, QStringList{u"file://"_s + home.paths.logFile});
}

} // namespace
} // namespace korvel::test
