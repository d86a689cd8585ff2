#include "journey/journey.h"

#include <QFile>
#include <QProcess>
#include <csignal>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// Copies of the real tray program, off screen.
struct CopiesJourney : Journey {
    const QString program = home.assembleBundle(trayProgram());

    std::unique_ptr<QProcess> start(const QStringList &arguments = {}) {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment env = home.environment();
        for (const QString &name :
             {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"DBUS_SESSION_BUS_ADDRESS"_s})
            env.remove(name);
        process->setProcessEnvironment(env);
        process->setProcessChannelMode(QProcess::MergedChannels);
        process->start(program, arguments);
        EXPECT_TRUE(process->waitForStarted());
        return process;
    }
    /// Launched: it has written its first log line.
    static bool isUp(QProcess &copy) {
        return eventually([&] { return copy.peek(1 << 16).contains("[tray]") || copy.state() == QProcess::NotRunning; }) &&
               copy.state() == QProcess::Running;
    }
    static bool hasEnded(QProcess &copy) {
        return eventually([&] { return copy.state() == QProcess::NotRunning; });
    }
    static void end(QProcess &copy) {
        copy.terminate();
        EXPECT_TRUE(hasEnded(copy));
        EXPECT_EQ(copy.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(copy.exitCode(), 0);
    }
};

TEST_F(CopiesJourney, TheNewestCopyEndsTheOlderOneAndLeavesTheAgentAlone) {
    installAndSignIn();
    const auto first = start();
    ASSERT_TRUE(isUp(*first));
    ASSERT_TRUE(eventually([&] { return home.agentPid() != 0; }));
    const qint64 agent = home.agentPid();
    const auto second = start();
    ASSERT_TRUE(hasEnded(*first));
    EXPECT_EQ(first->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(first->exitCode(), 0);
    EXPECT_TRUE(isUp(*second));
    EXPECT_EQ(home.agentPid(), agent);
    end(*second);
    EXPECT_EQ(home.agentPid(), agent);
}

TEST_F(CopiesJourney, ACopyThatDoesNotFollowIsEndedByForce) {
    const auto stubborn = start();
    ASSERT_TRUE(isUp(*stubborn));
    ::kill(static_cast<pid_t>(stubborn->processId()), SIGSTOP);
    const auto second = start();
    ASSERT_TRUE(hasEnded(*stubborn));
    EXPECT_EQ(stubborn->exitStatus(), QProcess::CrashExit);
    EXPECT_TRUE(isUp(*second));
    end(*second);
}

TEST_F(CopiesJourney, CopiesOfAnotherHomeAndAutomationRunsAreNoCopies) {
    sim::SimulatedHome other(folder.filePath(u"other"_s));
    const auto first = start();
    ASSERT_TRUE(isUp(*first));
    QProcess elsewhere;
    QProcessEnvironment env = other.environment();
    env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    env.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
    elsewhere.setProcessEnvironment(env);
    elsewhere.setProcessChannelMode(QProcess::MergedChannels);
    elsewhere.start(other.assembleBundle(trayProgram()), {});
    ASSERT_TRUE(isUp(elsewhere));
    EXPECT_EQ(first->state(), QProcess::Running);
    end(elsewhere);
    end(*first);
}

} // namespace
} // namespace korvel::test
