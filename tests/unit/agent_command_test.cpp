#include "service/agent_command.h"

#include "service/launchctl.h"
#include "service/login_item.h"
#include "support/fakes.h"
#include "support/manual_scheduler.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

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
    RecordedPrograms programs;
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
    scheduler.settle();
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
    scheduler.settle();
    EXPECT_EQ(answers, 2);
}

TEST(Launchctl, OnlyAStatusSaysHowACommandEnded) {
    RecordedPrograms programs;
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

} // namespace
} // namespace korvel::test
