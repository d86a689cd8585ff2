#include "home_fixture.h"

#include "simulator/process_list.h"

#include <QFile>

#include <csignal>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

class LaunchctlTest : public HomeTest {
protected:
    int bootstrap() { return home.launchctl({u"bootstrap"_s, domain, home.jobFilePath()}); }
    int print() { return home.launchctl({u"print"_s, target}); }
    int bootout() { return home.launchctl({u"bootout"_s, target}); }
    bool runsAnew(qint64 before) {
        return eventually([&] { return home.agentPid() != 0 && home.agentPid() != before; });
    }
    pid_t supervisor() {
        for (const ProcessInfo &process : processesOfHome(home.path()))
            if (process.commandLine.first().endsWith("/launchd"_L1))
                return process.id;
        return 0;
    }
};

} // namespace

TEST_F(LaunchctlTest, ExitStatusesTellWhetherTheJobIsLoaded) {
    EXPECT_EQ(print(), 113);
    EXPECT_EQ(bootout(), 3);
    EXPECT_EQ(home.launchctl({u"kickstart"_s, u"-k"_s, target}), 113);
    EXPECT_EQ(bootstrap(), 0);
    EXPECT_EQ(bootstrap(), 5);
    EXPECT_EQ(print(), 0);
    EXPECT_EQ(bootout(), 0);
    EXPECT_EQ(print(), 113);
    EXPECT_TRUE(QFile::remove(home.jobFilePath()));
    EXPECT_EQ(bootstrap(), 5);
}

TEST_F(LaunchctlTest, OnlyTheDomainOfThisUserIsKnown) {
    EXPECT_NE(home.launchctl({u"bootstrap"_s, u"gui/99999"_s, home.jobFilePath()}), 0);
    EXPECT_EQ(bootstrap(), 0);
    EXPECT_EQ(home.launchctl({u"print"_s, u"gui/99999/com.korvel.agent"_s}), 113);
    EXPECT_EQ(home.launchctl({u"bootout"_s, domain + "/../com.korvel.agent"_L1}), 113);
    EXPECT_EQ(print(), 0);
}

TEST_F(LaunchctlTest, DisabledJobStaysUnloadedUntilEnabled) {
    EXPECT_EQ(home.launchctl({u"disable"_s, target}), 0);
    EXPECT_EQ(bootstrap(), 5);
    EXPECT_EQ(home.launchctl({u"enable"_s, target}), 0);
    EXPECT_EQ(bootstrap(), 0);
}

TEST_F(LaunchctlTest, KilledAgentIsStartedAgainAfterTheThrottle) {
    home.setScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 50}}}});
    ASSERT_TRUE(startAgent());
    const qint64 before = home.agentPid();
    ASSERT_TRUE(home.killAgent(SIGKILL));
    EXPECT_TRUE(runsAnew(before));
    EXPECT_TRUE(eventually([&] { return health().end == End::Answered; }));
}

TEST_F(LaunchctlTest, KickstartKillsAndRestartsWithoutThrottle) {
    home.setScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 1'000'000}}}});
    ASSERT_TRUE(startAgent());
    const qint64 before = home.agentPid();
    EXPECT_EQ(home.launchctl({u"kickstart"_s, target}), 0);
    EXPECT_EQ(home.agentPid(), before) << "without -k a running job is left alone";
    EXPECT_EQ(home.launchctl({u"kickstart"_s, u"-k"_s, target}), 0);
    EXPECT_TRUE(runsAnew(before));
}

TEST_F(LaunchctlTest, BootoutReturnsWhenNoProcessIsLeft) {
    ASSERT_TRUE(startAgent());
    EXPECT_EQ(bootout(), 0);
    EXPECT_TRUE(processesOfHome(home.path()).isEmpty());
    EXPECT_EQ(home.agentPid(), 0);
}

TEST_F(LaunchctlTest, WhatAKilledSupervisorLeavesCountsAsNotLoaded) {
    ASSERT_TRUE(startAgent());
    ASSERT_EQ(::kill(supervisor(), SIGKILL), 0);
    EXPECT_TRUE(eventually([&] { return print() == 113; }));
    EXPECT_EQ(home.agentPid(), 0);
    EXPECT_EQ(bootstrap(), 0);
}

TEST_F(LaunchctlTest, SeveralBootstrapsAtOnceLoadTheJobOnce) {
    constexpr int CALLERS = 6;
    QProcess callers[CALLERS];
    for (QProcess &caller : callers) {
        caller.setProcessEnvironment(home.environment());
        caller.start(standInRoot() + "/bin/launchctl"_L1, {u"bootstrap"_s, domain, home.jobFilePath()});
    }
    int succeeded = 0;
    for (QProcess &caller : callers) {
        ASSERT_TRUE(caller.waitForFinished());
        succeeded += caller.exitCode() == 0 ? 1 : 0;
    }
    EXPECT_EQ(succeeded, 1);
}

// Whoever runs launchctl reads its error output to the end; the job that it leaves must not keep that open.
TEST_F(LaunchctlTest, BootstrapHoldsNoFileOfItsCallerOpen) {
    const QString launchctl = standInRoot() + "/bin/launchctl"_L1;
    const Run reader = run(u"/bin/sh"_s, {u"-c"_s, u"{ exec 7>&1; \"$0\" bootstrap \"$1\" \"$2\"; } 2>&1 | cat"_s,
                                          launchctl, domain, home.jobFilePath()});
    EXPECT_EQ(reader.status, 0);
    EXPECT_EQ(print(), 0);
}

TEST_F(LaunchctlTest, ScenarioMakesCallsFailOrDoNothing) {
    const auto fault = [](const QJsonObject &entry) { return QJsonObject{{u"launchctl"_s, entry}}; };
    home.setScenario(
        fault({{u"bootstrap"_s, QJsonObject{{u"status"_s, 37}, {u"times"_s, 1}, {u"stderr"_s, u"no"_s}}}}));
    EXPECT_EQ(bootstrap(), 37);
    EXPECT_EQ(home.toolCalls().last().value("error"_L1).toString(), u"no"_s);
    EXPECT_EQ(bootstrap(), 0);

    home.setScenario(fault({{u"bootout"_s, QJsonObject{{u"ignore"_s, true}}}}));
    EXPECT_EQ(bootout(), 0);
    EXPECT_EQ(print(), 0);
    EXPECT_TRUE(home.shutDown()) << "no scenario holds up the end";
    EXPECT_EQ(print(), 113);
}

TEST_F(LaunchctlTest, JobThatIsNotKeptAliveIsNotRestarted) {
    QFile file(home.jobFilePath());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray text = file.readAll().replace("<key>KeepAlive</key>\n    <true/>", "<key>KeepAlive</key><false/>");
    file.resize(0);
    file.write(text);
    file.close();
    ASSERT_TRUE(startAgent());
    ASSERT_TRUE(home.killAgent(SIGTERM));
    EXPECT_TRUE(eventually([&] { return home.agentPid() == 0; }));
    EXPECT_EQ(print(), 0) << "the job stays loaded";
    EXPECT_EQ(home.launchctl({u"kickstart"_s, target}), 0);
    EXPECT_NE(home.agentPid(), 0);
}

} // namespace korvel::sim
