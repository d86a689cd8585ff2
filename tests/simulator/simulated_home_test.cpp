#include "home_fixture.h"

#include "simulator/loopback_socket.h"
#include "simulator/process_list.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <memory>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

class SimulatedHomeTest : public HomeTest {
protected:
    std::unique_ptr<SimulatedHome> anotherHome(const QString &name) {
        auto other = std::make_unique<SimulatedHome>(folder.path() + u'/' + name);
        EXPECT_TRUE(other->signIn(name));
        EXPECT_TRUE(other->installJobFile());
        return other;
    }
};

} // namespace

TEST_F(SimulatedHomeTest, ReservedPortGoesToNobodyElse) {
    std::vector<std::unique_ptr<SimulatedHome>> homes;
    QSet<int> ports{home.port()};
    constexpr int HOMES = 40;
    for (int number = 0; number < HOMES; ++number) {
        homes.push_back(std::make_unique<SimulatedHome>(folder.path() + u"/parallel-%1"_s.arg(number)));
        ports.insert(homes.back()->port());
    }
    EXPECT_EQ(ports.size(), HOMES + 1);
    EXPECT_FALSE(ports.contains(0));
    for (int attempt = 0; attempt < 2000; ++attempt) {
        const int socket = boundLoopbackSocket(0);
        ASSERT_FALSE(ports.contains(portOf(socket)));
        ::close(socket);
    }
}

TEST_F(SimulatedHomeTest, ParallelHomesEachReachTheirOwnAgent) {
    const auto second = anotherHome(u"second"_s);
    const auto third = anotherHome(u"third"_s);
    ASSERT_TRUE(startAgent() && startAgent(*second) && startAgent(*third));
    EXPECT_TRUE(health().body.contains("sam@example.com"));
    for (SimulatedHome *each : {&home, second.get(), third.get()}) {
        ASSERT_EQ(each->requests().last().value("agent"_L1).toInteger(), each->agentPid());
        EXPECT_NE(each->agentPid(), 0);
    }
}

TEST_F(SimulatedHomeTest, ToolsAndShutDownTouchOnlyTheirOwnHome) {
    const auto other = anotherHome(u"other"_s);
    ASSERT_TRUE(startAgent() && startAgent(*other));
    const qint64 otherAgent = other->agentPid();
    home.setScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 1'000'000}}}});
    const QStringList pattern{u"-f"_s, u"Korvel.app/Contents/Resources/korvel-agent"_s};
    EXPECT_EQ(run(standInRoot() + "/usr/bin/pkill"_L1, pattern).status, 0);
    EXPECT_TRUE(eventually([&] { return home.agentPid() == 0; }));
    EXPECT_EQ(run(standInRoot() + "/usr/bin/pkill"_L1, pattern).status, 1);
    EXPECT_TRUE(home.shutDown());
    EXPECT_EQ(other->agentPid(), otherAgent);
    EXPECT_EQ(get(other->port(), "/", "").end, End::Answered);
}

TEST_F(SimulatedHomeTest, ShutDownEndsAgentsStartedOutsideLaunchdToo) {
    ASSERT_TRUE(startAgent());
    QProcess stray;
    QProcessEnvironment environment = home.environment();
    environment.insert(u"KORVEL_HOOK_PORT"_s, QString::number(anotherHome(u"spare"_s)->port()));
    stray.setProcessEnvironment(environment);
    stray.start(home.agentProgram(), {u"run"_s});
    ASSERT_TRUE(stray.waitForStarted());
    EXPECT_TRUE(home.shutDown());
    EXPECT_TRUE(stray.waitForFinished());
    EXPECT_TRUE(processesOfHome(home.path()).isEmpty());
}

TEST_F(SimulatedHomeTest, SupervisorOfARemovedHomeEnds) {
    auto other = anotherHome(u"removed"_s);
    ASSERT_TRUE(startAgent(*other));
    const QString path = other->path();
    ASSERT_TRUE(QDir(path).removeRecursively());
    EXPECT_TRUE(eventually([&] { return processesOfHome(path).isEmpty(); }));
}

TEST_F(SimulatedHomeTest, JobsEndWhenTheOwnerOfTheirHomeIsKilled) {
    const QString path = folder.path() + "/orphaned"_L1;
    const pid_t owner = ::fork();
    if (owner == 0) {
        SimulatedHome orphaned(path);
        const bool loaded =
            orphaned.installJobFile() && orphaned.launchctl({u"bootstrap"_s, domain, orphaned.jobFilePath()}) == 0;
        ::_exit(loaded ? 0 : 1); // without destructors
    }
    int status = -1;
    ASSERT_EQ(::waitpid(owner, &status, 0), owner);
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(eventually([&] { return processesOfHome(path).isEmpty(); }));
}

TEST_F(SimulatedHomeTest, BundleHoldsTrayAndAgentAsFilesOfItsOwn) {
    const QString tray = home.assembleBundle(u"/bin/true"_s);
    EXPECT_TRUE(tray.startsWith(home.path()) && tray.endsWith("/Korvel.app/Contents/MacOS/korvel-tray"_L1));
    for (const QString &program : {tray, home.agentProgram()}) {
        EXPECT_TRUE(QFileInfo(program).isExecutable());
        EXPECT_FALSE(QFileInfo(program).isSymLink());
    }
    EXPECT_EQ(home.assembleBundle(u"/bin/true"_s), tray) << "again, over the first";
    EXPECT_TRUE(home.assembleBundle(u"/no/such/program"_s).isEmpty());
}

TEST_F(SimulatedHomeTest, EnvironmentAndLogsAreThoseOfTheHome) {
    const QProcessEnvironment environment = home.environment();
    EXPECT_EQ(environment.value(u"HOME"_s), home.path());
    EXPECT_EQ(environment.value(u"KORVEL_HOOK_PORT"_s), QString::number(home.port()));
    EXPECT_FALSE(environment.contains(u"KORVEL_HOME"_s));
    EXPECT_EQ(run(standInRoot() + "/usr/bin/open"_L1, {u"https://example.com/"_s}).status, 0);
    EXPECT_EQ(home.opened(), QStringList{u"https://example.com/"_s});
    EXPECT_EQ(home.toolCalls().last().value("tool"_L1), QJsonValue(u"open"_s));
}

TEST_F(SimulatedHomeTest, ControlProgramDrivesTheHome) {
    const QString control = standInRoot() + "/usr/local/bin/korvel-simulator"_L1;
    EXPECT_EQ(run(control, {u"set"_s, uR"({"offline": true, "connectMs": 5})"_s}).status, 0);
    EXPECT_EQ(run(control, {u"set"_s, uR"({"offline": null})"_s}).status, 0);
    EXPECT_EQ(home.scenario(), (QJsonObject{{u"connectMs"_s, 5}}));
    EXPECT_EQ(run(control, {u"set"_s, u"offline"_s}).status, 2);
    EXPECT_EQ(run(control, {u"launchctl"_s, u"bootstrap"_s, domain, home.jobFilePath()}).status, 0);
    EXPECT_NE(home.agentPid(), 0);
    EXPECT_EQ(run(control, {u"--home"_s, home.path(), u"shut-down"_s}).status, 0);
    EXPECT_EQ(home.agentPid(), 0);
    EXPECT_TRUE(run(control, {u"--help"_s}).output.contains("shut-down"));
    EXPECT_EQ(run(control, {u"dance"_s}).status, 2);
}

} // namespace korvel::sim
