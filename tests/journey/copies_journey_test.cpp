#include "journey/journey.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <algorithm>
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
        return eventually(
                   [&] { return copy.peek(1 << 16).contains("[tray]") || copy.state() == QProcess::NotRunning; }) &&
               copy.state() == QProcess::Running;
    }
    /// Past the start: it bears the name of an established copy.
    static bool isTray(const QProcess &copy) {
        QFile name(u"/proc/%1/comm"_s.arg(copy.processId()));
        return name.open(QIODevice::ReadOnly) && name.readAll().trimmed() == "Korvel" &&
               QFile::symLinkTarget(u"/proc/%1/fd/2"_s.arg(copy.processId())) == u"/dev/null"_s;
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

TEST_F(CopiesJourney, OfCopiesThatStartTogetherExactlyOneStays) {
    for (int round = 0; round < 3; ++round) {
        std::vector<std::unique_ptr<QProcess>> copies;
        for (int i = 0; i < 3; ++i)
            copies.push_back(start());
        const auto running = [&] {
            return std::count_if(copies.begin(), copies.end(),
                                 [](const auto &copy) { return copy->state() == QProcess::Running; });
        };
        ASSERT_TRUE(eventually([&] { return running() == 1; }));
        for (const auto &copy : copies)
            if (copy->state() == QProcess::Running) {
                EXPECT_TRUE(isUp(*copy));
                end(*copy);
            }
    }
}

TEST_F(CopiesJourney, ACopyThatCannotTakeATurnStartsAllTheSameAndIsReplaced) {
    ASSERT_TRUE(QDir().mkpath(paths.turnFile)); // a folder, which no program can lock for writing
    const auto first = start();
    ASSERT_TRUE(isUp(*first));
    const auto second = start();
    EXPECT_TRUE(hasEnded(*first));
    EXPECT_TRUE(isUp(*second));
    end(*second);
}

TEST_F(CopiesJourney, ACopyWhoseProcessIsOlderThanItselfReplacesTheOneThatRuns) {
    // A process that becomes a tray later keeps its early start time.
    QProcess early;
    early.setProcessEnvironment(home.environment());
    early.setProcessChannelMode(QProcess::MergedChannels);
    early.start(u"/bin/sh"_s, {u"-c"_s, u"read go; unset DISPLAY DBUS_SESSION_BUS_ADDRESS; exec \"$0\""_s, program});
    ASSERT_TRUE(early.waitForStarted());
    const auto running = start();
    ASSERT_TRUE(isUp(*running));
    early.write("go\n");
    EXPECT_TRUE(hasEnded(*running));
    EXPECT_TRUE(isUp(early));
    end(early);
}

TEST_F(CopiesJourney, ATrayWithoutStandardStreamsRunsAndFollows) {
    QProcess shell;
    shell.setProcessEnvironment(home.environment());
    shell.start(u"/bin/sh"_s, {u"-c"_s, u"unset DISPLAY; exec \"$0\" 0<&- 1>&- 2>&-"_s, program});
    ASSERT_TRUE(shell.waitForStarted());
    installAndSignIn();
    ASSERT_TRUE(eventually([&] { return isTray(shell); }));
    end(shell);
}

} // namespace
} // namespace korvel::test
