#include "service/agent_api.h"
#include "service/agent_command.h"
#include "service/agent_config.h"
#include "service/launchctl.h"
#include "service/login_item.h"
#include "support/full_disk.h"
#include "support/tray_fixture.h"

#include <sys/stat.h>

namespace korvel::test {
namespace {

struct AgentApiTest : ::testing::Test {
    TestHome home;
    FakeHttp http;
    AgentConfig config{home.paths};
    AgentApi api{http, home.fixed, config};

    HttpRequest sent(const AgentRequest &request = {.path = u"/health"_s, .timeout = std::chrono::seconds(2)}) {
        api.send(request, Done<QJsonObject>([](Result<QJsonObject>) {}));
        return http.open.back().request;
    }
};

TEST_F(AgentApiTest, TheTokenIsReadAtTheMomentOfTheRequest) {
    EXPECT_TRUE(sent().headers.isEmpty());
    home.writeConfig(R"({"localToken":"one"})");
    EXPECT_EQ(sent().headers.value(0), std::make_pair(QByteArray("X-Korvel-Token"), QByteArray("one")));
    home.writeConfig(R"({"localToken":"two"})");
    EXPECT_EQ(sent().headers.value(0).second, "two");
    for (const char *unusable :
         {R"({"localToken":""})", R"({"localToken":5})", R"(["localToken"])", "{\"localToken\":\"o"}) {
        home.writeConfig(unusable);
        EXPECT_TRUE(sent().headers.isEmpty()) << unusable;
    }
}

TEST_F(AgentApiTest, ABodyGoesAsCompactJsonToTheLoopbackOnly) {
    const HttpRequest request = sent({.method = "POST",
                                      .path = u"/e2ee/reject"_s,
                                      .body = QJsonObject{{u"pendingId"_s, u"p 1"_s}},
                                      .timeout = std::chrono::seconds(60)});
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, u"http://127.0.0.1:8790/e2ee/reject"_s);
    EXPECT_EQ(request.body, R"({"pendingId":"p 1"})");
    EXPECT_TRUE(request.headers.contains(std::make_pair(QByteArray("Content-Type"), QByteArray("application/json"))));
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
    EXPECT_EQ(request.maxBytes, 512 << 10);
}

TEST_F(AgentApiTest, OnlyAJsonObjectIsAnAnswerWhateverTheStatus) {
    EXPECT_EQ(parseAgentReply({401, R"({"ok":false})"}).value().value(u"ok"), QJsonValue(false));
    const QByteArray deep = R"({"ok":true,"x":)" + QByteArray(100000, '[') + QByteArray(100000, ']') + '}';
    for (const QByteArray &body : {QByteArray("[1]"), QByteArray("<html>"), QByteArray(), QByteArray("{\"ok\":tr"),
                                   QByteArray("{\"ok\":true,\"a\":\"\xff\xfe\"}"), deep})
        EXPECT_FALSE(parseAgentReply({200, body}).ok()) << body.left(40).constData();
}

TEST(AgentReply, IsTheLastLineThatBeginsAnObject) {
    const auto value = [](const QByteArray &output) {
        const auto reply = parseAgentJson(output);
        return reply ? reply->value(u"n").toInt(-1) : -2;
    };
    EXPECT_EQ(value("log line\n{\"n\":1}\n\n"), 1);
    EXPECT_EQ(value("{\"n\":1}\n{\"n\":2}"), 2);
    EXPECT_EQ(value("{\"n\":1}\n \t{\"n\":2} \t\nbye"), 2);
    EXPECT_EQ(value("{\"n\":1}\n[{\"n\":2}]\n"), 1);
    EXPECT_EQ(value("{\"n\":1}\n{broken"), -2); // that line, and only that line, is the reply
    EXPECT_EQ(value("{\n\"n\":1}"), -2);
    EXPECT_EQ(value("\xff\n{\"n\":1}"), -2);
    EXPECT_EQ(value(""), -2);
}

struct AgentCommandTest : ::testing::Test {
    QTemporaryDir bundle;
    FakePrograms programs;
    ManualScheduler scheduler;

    AgentCommand command(std::optional<QString> agentBin) {
        return {programs, scheduler, bundle.path(), std::move(agentBin)};
    }
    QString putAgent(bool executable) {
        const QString path = bundle.filePath(u"Contents/Resources/korvel-agent"_s);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.setPermissions(executable ? QFile::ReadOwner | QFile::ExeOwner : QFile::ReadOwner);
        return path;
    }
};

TEST_F(AgentCommandTest, TheBundledAgentWinsOverTheOverride) {
    EXPECT_EQ(command(std::nullopt).agentForCLI(), std::nullopt);
    EXPECT_EQ(command(u""_s).agentForCLI(), std::nullopt);
    EXPECT_EQ(command(u"/a/agent"_s).agentForCLI(), (AgentLocation{u"/a/agent"_s, {}}));
    EXPECT_EQ(command(u"/a/agent.mjs"_s).agentForCLI(),
              (AgentLocation{u"/usr/bin/env"_s, {u"node"_s, u"/a/agent.mjs"_s}}));
    putAgent(false);
    EXPECT_EQ(command(u"/a/agent"_s).agentForCLI()->executable, u"/a/agent"_s);
    QFile::remove(bundle.filePath(u"Contents/Resources/korvel-agent"_s));
    const QString bundled = putAgent(true);
    EXPECT_EQ(command(u"/a/agent"_s).agentForCLI(), (AgentLocation{bundled, {}}));
}

TEST_F(AgentCommandTest, TheRequestGoesThroughStandardInputAndTheAnswerComesOnce) {
    programs.result.output = "{\"ok\":true}\n";
    AgentCommand agent = command(u"/a/agent.mjs"_s);
    int answers = 0;
    const LanguageScope chinese(true);
    agent.runAgentJson({{u"password"_s, u"p"_s}}, [&](const auto &reply) {
        ++answers;
        EXPECT_TRUE(reply && reply->value(u"ok").toBool());
    });
    EXPECT_EQ(answers, 0);
    scheduler.runDue();
    EXPECT_EQ(answers, 1);
    const ProgramRun run = programs.runs.at(0);
    EXPECT_EQ(run.arguments, (QStringList{u"node"_s, u"/a/agent.mjs"_s, u"login"_s, u"--stdin-json"_s}));
    EXPECT_EQ(run.input, R"({"password":"p"})");
    EXPECT_EQ(run.extraEnvironment.value(0), std::make_pair(u"KORVEL_LANG"_s, u"zh"_s));
    EXPECT_EQ(run.timeout, 60s);
    EXPECT_EQ(run.collect, ProgramRun::Collect::StandardOutput);
    AgentCommand none = command(std::nullopt);
    none.runAgentJson({}, [&](const auto &reply) { answers += reply ? 0 : 1; });
    EXPECT_EQ(answers, 1); // not at once
    scheduler.runDue();
    EXPECT_EQ(answers, 2);
}

TEST(Launchctl, OnlyAStatusSaysHowACommandEnded) {
    FakePrograms programs;
    const std::pair<ProgramResult, ServiceResult> cases[] = {
        {{.status = 0, .launched = true, .output = {}, .launchError = {}}, ServiceResult::Succeeded},
        {{.status = 113, .launched = true, .output = {}, .launchError = {}}, ServiceResult::Failed},
        {{.status = -1, .launched = true, .output = {}, .launchError = {}}, ServiceResult::Unknown},
        {{.status = -1, .launched = false, .output = {}, .launchError = u"none"_s}, ServiceResult::Unknown},
    };
    for (const auto &[ending, result] : cases) {
        programs.result = ending;
        EXPECT_EQ(Launchctl(programs, 501).kickstart(u"a.b"_s), result);
    }
    EXPECT_EQ(programs.runs.at(0).arguments, (QStringList{u"kickstart"_s, u"-k"_s, u"gui/501/a.b"_s}));
    EXPECT_EQ(programs.runs.at(0).timeout, 30s);
}

TEST(LoginItem, IsWrittenOnceAndOnlyForAnInstalledCopy) {
    const TestHome home;
    const auto text = [&] {
        QFile file(home.paths.trayPlist);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    ensureTrayLoginItem(home.paths, home.home() + u"/Applications/Korvel.app/Contents/MacOS/korvel-tray"_s);
    EXPECT_FALSE(QFile::exists(home.paths.trayPlist));
    ensureTrayLoginItem(home.paths, u"/Applications/A & <B>/korvel-tray"_s);
    EXPECT_TRUE(text().contains("<array><string>/Applications/A &amp; &lt;B&gt;/korvel-tray</string></array>\n"
                                "  <key>RunAtLoad</key><true/>\n  <key>StandardErrorPath</key><string>"))
        << text().constData();
    EXPECT_EQ(QFile::permissions(home.paths.trayPlist) & 0x0fff, QFile::Permissions(0x0644) & 0x0fff);
    home.write(home.paths.trayPlist, "edited");
    ensureTrayLoginItem(home.paths, u"/Applications/Korvel.app/x"_s);
    EXPECT_EQ(text(), "edited");
}

mode_t modeOf(const QString &path) {
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 0777 : 0;
}

struct AgentConfigTest : ::testing::Test {
    TestHome home;
    AgentConfig config{home.paths};

    QString text(QStringView key) const { return cfgText(config.readCfg(), key); }
};

TEST_F(AgentConfigTest, WhatIsNoSmallJsonObjectReadsAsEmpty) {
    EXPECT_TRUE(config.readCfg().isEmpty());
    for (const QByteArray &content : {QByteArray("[1,2]"), QByteArray("{\"agentToken\":\"t\""),
                                      QByteArray("\0\1\2\xff", 4), QByteArray(), QByteArray("\"text\"")}) {
        home.writeConfig(content);
        EXPECT_TRUE(config.readCfg().isEmpty());
    }
    home.writeConfig("{\"agentToken\":\"" + QByteArray(2 << 20, 'x') + "\"}");
    EXPECT_TRUE(config.readCfg().isEmpty());
    home.bind();
    EXPECT_EQ(text(u"username"), u"ann"_s);
}

TEST_F(AgentConfigTest, WhatOthersWriteIsReadAtOnce) {
    home.writeConfig(R"({"username":"ann"})");
    EXPECT_EQ(text(u"username"), u"ann"_s);
    // In place, of the same size, and perhaps within one tick of the file system's clock.
    home.writeConfig(R"({"username":"bob"})");
    EXPECT_EQ(text(u"username"), u"bob"_s);

    const AgentConfig anHourLater(home.paths, [] { return std::time(nullptr) + 3600; });
    for (int reading = 0; reading < 2; ++reading)
        EXPECT_EQ(cfgText(anHourLater.readCfg(), u"username"), u"bob"_s);
    replacePrivateFile(home.paths.agentCfg, R"({"username":"eve"})");
    EXPECT_EQ(cfgText(anHourLater.readCfg(), u"username"), u"eve"_s);
    QFile::remove(home.paths.agentCfg);
    EXPECT_TRUE(anHourLater.readCfg().isEmpty());
}

TEST_F(AgentConfigTest, WithoutADescriptorWhatWasReadLastStays) {
    home.bind();
    EXPECT_EQ(text(u"username"), u"ann"_s);
    const NoDescriptors none;
    EXPECT_EQ(text(u"username"), u"ann"_s);
    QFile::remove(home.paths.agentCfg);
    EXPECT_TRUE(config.readCfg().isEmpty());
}

TEST_F(AgentConfigTest, AFolderOrAPipeInItsPlaceNeitherBlocksNorCounts) {
    QDir().mkpath(home.paths.agentCfg);
    EXPECT_TRUE(config.readCfg().isEmpty());
    config.writeCfg({{u"a"_s, 1}});
    EXPECT_TRUE(QFileInfo(home.paths.agentCfg).isDir());
    QDir().rmdir(home.paths.agentCfg);
    ASSERT_EQ(::mkfifo(QFile::encodeName(home.paths.agentCfg).constData(), 0600), 0);
    EXPECT_TRUE(config.readCfg().isEmpty());
}

TEST_F(AgentConfigTest, AWriteTightensTheModeAndKeepsTheOtherKeys) {
    config.writeCfg({{u"b"_s, 1}, {u"a"_s, u"x"_s}});
    EXPECT_EQ(modeOf(home.paths.cfgDir), 0700u);
    EXPECT_EQ(modeOf(home.paths.agentCfg), 0600u);

    home.writeConfig(R"({"localToken":"secret","server":"s"})");
    QFile::setPermissions(home.paths.agentCfg, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
    QJsonObject cfg = config.readCfg();
    cfg.insert(u"agentToken"_s, u"new"_s);
    config.writeCfg(cfg);
    EXPECT_EQ(modeOf(home.paths.agentCfg), 0600u);
    EXPECT_EQ(text(u"localToken"), u"secret"_s);
    EXPECT_EQ(text(u"agentToken"), u"new"_s);
}

TEST_F(AgentConfigTest, AFullDiskLeavesTheOldFileWholeAndNoRemains) {
    home.bind();
    {
        const FullDisk full(100);
        config.writeCfg({{u"agentToken"_s, QString(500, u'x')}});
    }
    EXPECT_EQ(text(u"agentToken"), u"t"_s);
    EXPECT_EQ(QDir(home.paths.cfgDir).entryList(QDir::Files | QDir::Hidden), QStringList{u"agent.json"_s});
}

TEST_F(AgentConfigTest, AFileBehindALinkIsReplacedWhereItLies) {
    const QString real = home.home() + u"/elsewhere.json"_s;
    home.write(real, "{}");
    QDir().mkpath(home.paths.cfgDir);
    ASSERT_TRUE(QFile::link(real, home.paths.agentCfg));
    config.writeCfg({{u"a"_s, u"b"_s}});
    EXPECT_TRUE(QFileInfo(home.paths.agentCfg).isSymLink());
    EXPECT_EQ(text(u"a"), u"b"_s);
    EXPECT_EQ(modeOf(real), 0600u);
}

struct AgentControlTest : TrayFixture {
    TrayState state;
    int repairs = 0;
    AgentConfig config{home.paths};
    TimedNotices hud{notices, desktop, scheduler};
    AgentControl control{state,    home.fixed, home.paths, config, services,
                         programs, desktop,    scheduler,  hud,    {.repairService = [this] { ++repairs; }}};

    QStringList callsOf(void (AgentControl::*operation)(std::function<void()>)) {
        services.calls.clear();
        bool ended = false;
        (control.*operation)([&] { ended = true; });
        scheduler.runDue();
        EXPECT_TRUE(ended);
        return services.calls;
    }
};

TEST_F(AgentControlTest, LaunchLoadsTheJobOnlyOfABoundAndInstalledMac) {
    EXPECT_TRUE(callsOf(&AgentControl::ensureAgentLoaded).isEmpty());
    home.bind();
    EXPECT_TRUE(callsOf(&AgentControl::ensureAgentLoaded).isEmpty());
    home.installJobFile();
    EXPECT_EQ(callsOf(&AgentControl::ensureAgentLoaded),
              (QStringList{u"print com.korvel.agent"_s, u"bootstrap com.korvel.agent.plist"_s}));
    EXPECT_EQ(state.health.startingUntil, scheduler.now() + 25s);
    EXPECT_EQ(callsOf(&AgentControl::ensureAgentLoaded), QStringList{u"print com.korvel.agent"_s});
}

TEST_F(AgentControlTest, ARestartUndoesAPauseAndReplacesARunningInstance) {
    callsOf(&AgentControl::restartAgent);
    EXPECT_EQ(repairs, 1);
    home.installJobFile();
    EXPECT_EQ(callsOf(&AgentControl::restartAgent),
              (QStringList{u"enable com.korvel.agent"_s, u"bootstrap com.korvel.agent.plist"_s}));
    EXPECT_EQ(callsOf(&AgentControl::restartAgent).last(), u"kickstart com.korvel.agent"_s);
    EXPECT_EQ(state.health.startingUntil, scheduler.now() + 25s);
}

TEST_F(AgentControlTest, QuittingStopsTheAgentAndItsStraysBeforeTheTrayGoes) {
    services.loaded = true;
    control.quitAll();
    control.quitAll();
    EXPECT_EQ(notices.last(), u"⏻ Quitting…"_s);
    EXPECT_EQ(desktop.terminated, 0);
    scheduler.runDue();
    EXPECT_EQ(services.calls, (QStringList{u"bootout com.korvel.agent"_s, u"bootout com.korvel.tray"_s}));
    ASSERT_EQ(programs.runs.size(), 2u);
    EXPECT_EQ(programs.runs[0].executable, u"/usr/bin/pkill"_s);
    EXPECT_EQ(programs.runs[0].arguments, (QStringList{u"-f"_s, u"Korvel.app/Contents/Resources/korvel-agent"_s}));
    EXPECT_EQ(programs.runs[1].arguments, (QStringList{u"-f"_s, u"korvel-agent.mjs run"_s}));
    EXPECT_EQ(desktop.terminated, 1);
}

TEST_F(AgentControlTest, AServiceManagerThatHangsDoesNotKeepTheUserFromQuitting) {
    scheduler.holdBackground(true);
    control.quitAll();
    scheduler.advance(30s);
    EXPECT_EQ(desktop.terminated, 1);
}

TEST_F(AgentControlTest, TheLogIsOpenedWhenThereIsOne) {
    control.openLog();
    EXPECT_EQ(notices.last(), u"No log yet"_s);
    home.write(home.paths.logFile, "line");
    control.openLog();
    EXPECT_EQ(desktop.opened, QStringList{u"file://"_s + home.paths.logFile});
}

} // namespace
} // namespace korvel::test
