#include "journey/journey.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <csignal>

namespace korvel::test {
namespace {

/// Instances of the real tray program, off screen.
struct InstancesJourney : Journey {
    std::unique_ptr<TrayProcess> start() {
        auto process = std::make_unique<TrayProcess>(home);
        EXPECT_TRUE(process->begin());
        return process;
    }
    /// Launched: it has written its first log line.
    static bool isUp(QProcess &instance) {
        return eventually([&] {
                   return instance.peek(1 << 16).contains("[tray]") || instance.state() == QProcess::NotRunning;
               }) &&
               instance.state() == QProcess::Running;
    }
    /// Past the start: it bears the name of an established instance.
    static bool isTray(const QProcess &instance) {
        QFile name(u"/proc/%1/comm"_s.arg(instance.processId()));
        return name.open(QIODevice::ReadOnly) && name.readAll().trimmed() == "Korvel" &&
               QFile::symLinkTarget(u"/proc/%1/fd/2"_s.arg(instance.processId())) == u"/dev/null"_s;
    }
    static bool hasEnded(QProcess &instance) {
        return eventually([&] { return instance.state() == QProcess::NotRunning; });
    }
    /// Expects that another instance takes the place of `first`.
    void expectReplaced(TrayProcess &first, bool endsWell = true) {
        const auto second = start();
        ASSERT_TRUE(hasEnded(first));
        EXPECT_EQ(first.hasEndedWell(), endsWell);
        EXPECT_TRUE(isUp(*second));
        second->end();
    }
};

TEST_F(InstancesJourney, TheNewestEndsTheOlderOneAndLeavesTheAgentAlone) {
    installAndSignIn();
    const auto first = start();
    ASSERT_TRUE(isUp(*first));
    ASSERT_TRUE(eventually([&] { return home.agentPid() != 0; }));
    const qint64 agent = home.agentPid();
    expectReplaced(*first);
    EXPECT_EQ(home.agentPid(), agent);
}

TEST_F(InstancesJourney, OneThatDoesNotFollowIsEndedByForce) {
    const auto stubborn = start();
    ASSERT_TRUE(isUp(*stubborn));
    ::kill(static_cast<pid_t>(stubborn->processId()), SIGSTOP);
    expectReplaced(*stubborn, false);
}

TEST_F(InstancesJourney, OneThatCannotTakeATurnStartsAllTheSameAndIsReplaced) {
    ASSERT_TRUE(QDir().mkpath(paths.turnFile)); // a folder, which no program can lock for writing
    const auto first = start();
    ASSERT_TRUE(isUp(*first));
    expectReplaced(*first);
}

TEST_F(InstancesJourney, ThoseOfAnotherHomeGoOn) {
    sim::SimulatedHome other(folder.filePath(u"other"_s));
    const auto first = start();
    ASSERT_TRUE(isUp(*first));
    TrayProcess elsewhere(other);
    ASSERT_TRUE(elsewhere.begin() && isUp(elsewhere));
    EXPECT_EQ(first->state(), QProcess::Running);
    elsewhere.end();
    first->end();
}

TEST_F(InstancesJourney, OfThoseThatStartTogetherExactlyOneStays) {
    for (int round = 0; round < 3; ++round) {
        std::vector<std::unique_ptr<TrayProcess>> instances;
        for (int i = 0; i < 3; ++i)
            instances.push_back(start());
        const auto runs = [](const auto &instance) { return instance->state() == QProcess::Running; };
        ASSERT_TRUE(eventually([&] { return std::ranges::count_if(instances, runs) == 1; }));
        const auto last = std::ranges::find_if(instances, runs);
        EXPECT_TRUE(isUp(**last));
        (*last)->end();
    }
}

TEST_F(InstancesJourney, OneWhoseProcessIsOlderThanItselfReplacesTheOneThatRuns) {
    // A process that becomes a tray later keeps its early start time.
    TrayProcess early(home);
    early.setProcessChannelMode(QProcess::MergedChannels);
    early.start(u"/bin/sh"_s, {u"-c"_s, u"read go; exec \"$0\""_s, early.placed});
    ASSERT_TRUE(early.waitForStarted());
    const auto running = start();
    ASSERT_TRUE(isUp(*running));
    early.write("go\n");
    EXPECT_TRUE(hasEnded(*running));
    EXPECT_TRUE(isUp(early));
    early.end();
}

TEST_F(InstancesJourney, OneWithoutStandardStreamsRunsAndFollows) {
    TrayProcess tray(home);
    tray.start(u"/bin/sh"_s, {u"-c"_s, u"exec \"$0\" 0<&- 1>&- 2>&-"_s, tray.placed});
    ASSERT_TRUE(tray.waitForStarted());
    installAndSignIn();
    ASSERT_TRUE(eventually([&] { return isTray(tray); }));
    tray.end();
}

} // namespace
} // namespace korvel::test
