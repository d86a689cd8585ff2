#include "exchange/sha256.h"
#include "journey/journey.h"
#include "simulator/home/files.h"
#include "simulator/home/processes.h"
#include "update/install_script.h"

#include <functional>
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

// A journey that meets another fault than it names passes for nothing.

TEST_F(SimulatorTest, FaultsOfTheAgentAreThoseThatTheScenarioNames) {
    const auto poll = [this](std::chrono::milliseconds timeout) {
        const QString url = u"http://127.0.0.1:%1/health"_s.arg(home.port());
        const QByteArray token = sim::readObject(home.configPath()).value(u"localToken").toString().toUtf8();
        return outcomeOf(http, HttpRequest{.url = url, .headers = {{"X-Korvel-Token", token}}, .timeout = timeout});
    };
    const auto isOk = [](const HttpReply &r) { return QJsonDocument::fromJson(r.body).object()[u"ok"] == true; };
    ASSERT_TRUE(startAgent(home) && eventually([&] { return poll(20s).ok(); }));
    const struct {
        QString mode;
        std::optional<ErrorKind> failure;
        std::function<bool(const HttpReply &)> holds = {};
        QJsonObject more = {};
    } cases[] = {
        {u"silent"_s, ErrorKind::TimedOut},
        {u"close"_s, ErrorKind::Interrupted},
        {u"reset"_s, ErrorKind::Interrupted},
        {u"truncate"_s, ErrorKind::Interrupted},
        {u"not-http"_s, ErrorKind::UnreadableResponse},
        {u"garbage"_s, {}, [](const HttpReply &r) { return QJsonDocument::fromJson(r.body).isNull(); }},
        {u"deep"_s, {}, [](const HttpReply &r) { return r.body.count('[') == 100'000; }},
        {u"html"_s, {}, [](const HttpReply &r) { return r.status == 500 && r.body.startsWith("<!DOCTYPE html>"); }},
        {u"huge"_s, {}, [&](const HttpReply &r) { return isOk(r) && r.body.size() == 90'000; }, {{u"bytes"_s, 90'000}}},
        {u"drip"_s, {}, isOk, {{u"ms"_s, 1}}},
    };
    for (const auto &c : cases) {
        QJsonObject fault = c.more;
        fault.insert(u"mode"_s, c.mode);
        home.setScenario(agentFault(u"/health"_s, fault));
        const Result<HttpReply> reply = poll(c.failure == ErrorKind::TimedOut ? 200ms : 20s);
        EXPECT_EQ(reply ? std::nullopt : std::optional(reply.error().kind), c.failure) << c.mode.toStdString();
        EXPECT_TRUE(!reply || c.holds(reply.value())) << c.mode.toStdString();
    }
}

} // namespace
} // namespace korvel::test
