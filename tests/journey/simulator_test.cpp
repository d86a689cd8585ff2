#include "exchange/sha256.h"
#include "journey/journey.h"
#include "simulator/home/files.h"
#include "simulator/home/processes.h"
#include "update/install_script.h"

#include <sys/wait.h>
#include <unistd.h>

namespace korvel::test {
namespace {

using sim::SimulatedHome;

/// A signed-in Mac with its agent's job file, and room for a second one.
struct SimulatorTest : Journey {
    const QString otherPath = folder.filePath(u"other"_s);

    void SetUp() override { installAndSignIn(); }
    static bool startAgent(SimulatedHome &which) {
        EXPECT_EQ(which.launchctl({u"bootstrap"_s, sim::Home::domain(), which.jobFilePath()}), 0);
        return eventually([&] { return which.agentPid() != 0; });
    }
    bool isOtherClean() const {
        return eventually([this] { return sim::processesOfHome(otherPath).isEmpty(); });
    }
};

// What a test or the tour leaves behind would run on in the developer's session.

TEST_F(SimulatorTest, ToolsAndShutDownTouchOnlyTheirOwnHome) {
    SimulatedHome other(otherPath);
    ASSERT_TRUE(other.installJobFile() && startAgent(other) && startAgent(home));
    EXPECT_NE(home.port(), other.port());
    const qint64 otherAgent = other.agentPid();
    home.setScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 1'000'000}}}});
    const QStringList pattern{u"-f"_s, u"Korvel.app/Contents/Resources/korvel-agent"_s};
    EXPECT_EQ(programs.run({.executable = u"/usr/bin/pkill"_s, .arguments = pattern}).status, 0);
    EXPECT_TRUE(eventually([this] { return home.agentPid() == 0; }));
    EXPECT_TRUE(home.shutDown());
    EXPECT_EQ(other.agentPid(), otherAgent);
    ASSERT_TRUE(eventually([this] { return QDir(otherPath).removeRecursively(); })); // the agent may be writing
    EXPECT_TRUE(isOtherClean());
}

TEST_F(SimulatorTest, TheJobsOfAHomeEndWhenItsOwnerIsKilled) {
    const pid_t owner = ::fork();
    if (owner == 0) {
        SimulatedHome orphaned(otherPath);
        const bool isLoaded = orphaned.installJobFile() &&
                              orphaned.launchctl({u"bootstrap"_s, sim::Home::domain(), orphaned.jobFilePath()}) == 0;
        ::_exit(isLoaded ? 0 : 1); // without destructors
    }
    int status = -1;
    ASSERT_EQ(::waitpid(owner, &status, 0), owner);
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(isOtherClean());
}

// The simulated osascript runs the tray's privileged script on the developer's machine: nothing else may run.
TEST_F(SimulatorTest, OnlyTheTraysOwnScriptRunsAndOnlyInTheHome) {
    const QString package = folder.filePath(u"it's a copy of /bin/rm \"$d\" on Ann's.pkg"_s);
    const QString victim = folder.filePath(u"victim"_s);
    ASSERT_TRUE(sim::replaceFile(package, "korvel-package 1.4.0\nprogram\n"_ba));
    const ProgramRun installation = buildInstall(package, {.ver = u"1.4.0"_s, .sha = sha256File(package).value()});
    ProgramRun other = installation;
    other.arguments = installation.arguments.first(7);
    EXPECT_EQ(programs.run(other).status, 1) << "no prompt";
    for (const QString &script : {u"/bin/rm -f '%1'; /bin/cat %1"_s, u"/private/tmp/../rm; /bin/rm -f '%1'"_s,
                                  u"/bin/rm -f '%1'\"/etc\""_s, u"installer || touch '%1'"_s}) {
        other.arguments = installation.arguments;
        other.arguments[6] = script.arg(victim);
        const ProgramResult refused = programs.run(other);
        EXPECT_TRUE(refused.status == 1 && refused.output.endsWith(" (127)\n")) << refused.output.constData();
    }
    EXPECT_FALSE(QFile::exists(victim));
    EXPECT_TRUE(home.installedPackages().isEmpty());

    EXPECT_EQ(programs.run(installation).status, 0);
    ASSERT_EQ(home.installedPackages().size(), 1);
    EXPECT_EQ(home.installedPackages().first().value(u"version"), u"1.4.0"_s);
    EXPECT_TRUE(QDir(sim::HomePaths{home.path()}.privateTemp()).isEmpty());
}

// A journey that meets another fault than it names passes for nothing. ServerJourney sees the other faults' causes.
TEST_F(SimulatorTest, FaultsAreThoseThatTheScenarioNames) {
    const auto replyTo = [this](const QJsonObject &scenario, std::chrono::milliseconds timeout = 20s) {
        home.setScenario(scenario);
        const QString url = u"http://127.0.0.1:%1/health"_s.arg(home.port());
        const QByteArray token = sim::readObject(home.configPath()).value(u"localToken").toString().toUtf8();
        return outcomeOf(http, HttpRequest{.url = url, .headers = {{"X-Korvel-Token", token}}, .timeout = timeout});
    };
    const auto mode = [](const QString &name) { return agentFault(u"/health"_s, {{u"mode"_s, name}}); };
    ASSERT_TRUE(startAgent(home) && eventually([&] { return replyTo({}).ok(); }));
    EXPECT_EQ(object(replyTo({}).value().body).value(u"ok"), true);
    EXPECT_EQ(replyTo(mode(u"silent"_s), 200ms).error().kind, ErrorKind::TimedOut);
    EXPECT_TRUE(QJsonDocument::fromJson(replyTo(mode(u"garbage"_s)).value().body).isNull());
    EXPECT_EQ(replyTo(mode(u"deep"_s)).value().body.count('['), 100'000);
    EXPECT_EQ(replyTo(mode(u"html"_s)).value().status, 500);
}

} // namespace
} // namespace korvel::test
