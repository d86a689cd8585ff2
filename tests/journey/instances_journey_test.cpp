#include "journey/journey.h"

#include <algorithm>
#include <csignal>

namespace korvel::test {
namespace {

/// Instances of the real tray program, off screen.
struct InstancesJourney : Journey {
    static bool runs(const std::unique_ptr<TrayProcess> &instance) { return instance->state() == QProcess::Running; }
    /// Whether it is launched: it has written its first log line.
    static bool isUp(TrayProcess &instance) {
        eventually([&] { return instance.peek(1 << 16).contains("[tray]") || instance.state() != QProcess::Running; });
        return instance.state() == QProcess::Running;
    }
    std::unique_ptr<TrayProcess> startUp() {
        auto process = std::make_unique<TrayProcess>(home);
        EXPECT_TRUE(process->begin() && isUp(*process));
        return process;
    }
    /// Expects that another instance takes the place of `first`.
    void expectReplaced(TrayProcess &first, bool endsWell = true) {
        const auto second = startUp();
        ASSERT_TRUE(eventually([&] { return first.state() == QProcess::NotRunning; }));
        EXPECT_EQ(first.hasEndedWell(), endsWell);
        second->end();
    }
};

TEST_F(InstancesJourney, TheNewestEndsTheOlderOneAndLeavesTheAgentAndOtherHomesAlone) {
    installAndSignIn();
    const auto first = startUp();
    ASSERT_TRUE(eventually([&] { return home.agentPid() != 0; }));
    const qint64 agent = home.agentPid();
    sim::SimulatedHome other(folder.filePath(u"other"_s));
    TrayProcess elsewhere(other);
    ASSERT_TRUE(elsewhere.begin() && isUp(elsewhere));
    EXPECT_TRUE(runs(first));
    expectReplaced(*first);
    EXPECT_EQ(home.agentPid(), agent);
    elsewhere.end();
}

TEST_F(InstancesJourney, OneThatHangsIsEndedByForce) {
    const auto first = startUp();
    ::kill(static_cast<pid_t>(first->processId()), SIGSTOP);
    expectReplaced(*first, false);
}

TEST_F(InstancesJourney, OneThatCannotLockTheTurnFileStartsAndIsReplaced) {
    ASSERT_TRUE(QDir().mkpath(paths.turnFile)); // a folder
    expectReplaced(*startUp());
}

TEST_F(InstancesJourney, OfThoseThatStartTogetherExactlyOneStays) {
    for (int round = 0; round < 3; ++round) {
        std::vector<std::unique_ptr<TrayProcess>> instances;
        for (int i = 0; i < 3; ++i)
            ASSERT_TRUE(instances.emplace_back(std::make_unique<TrayProcess>(home))->begin());
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
    const auto running = startUp();
    early.write("go\n");
    EXPECT_TRUE(eventually([&] { return !runs(running); }));
    EXPECT_TRUE(isUp(early));
    early.end();
}

TEST_F(InstancesJourney, OneWithoutStandardStreamsOpensThemAndEndsWell) {
    installAndSignIn();
    TrayProcess tray(home);
    tray.start(u"/bin/sh"_s, {u"-c"_s, u"exec \"$0\" 0<&- 1>&- 2>&-"_s, tray.placed});
    ASSERT_TRUE(tray.waitForStarted());
    ASSERT_TRUE(eventually([&] { return home.agentPid() != 0; }));
    EXPECT_EQ(QFile::symLinkTarget(u"/proc/%1/fd/2"_s.arg(tray.processId())), u"/dev/null"_s);
    tray.end();
}

} // namespace
} // namespace korvel::test
