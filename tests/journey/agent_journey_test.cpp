#include "journey/journey.h"

#include <csignal>
#include <sys/resource.h>

namespace korvel::test {
namespace {

/// The most memory that this process has held so far, in MiB.
double peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

TEST_F(Journey, TheAgentIsFoundAgainAfterItDied) {
    ASSERT_NO_FATAL_FAILURE(startConnected());
    EXPECT_TRUE(item.icon.on && !item.icon.dimmed);
    const qint64 first = home.agentPid();
    home.changeScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 3000}}}});
    ASSERT_TRUE(home.killAgent(SIGKILL));
    // The grace of the start has to be over for a death to show as one.
    ASSERT_TRUE(eventually([&] { return !item.icon.on; }));
    EXPECT_TRUE(item.statusLine().startsWith(u"○ "_s)) << item.statusLine().toStdString();
    ASSERT_TRUE(showsSoon(CONNECTED));
    EXPECT_NE(home.agentPid(), first);
}

TEST_F(Journey, APauseKeepsTheAgentDownAndQuittingLeavesItEnabled) {
    const auto bootstrap = [&] { return home.launchctl({u"bootstrap"_s, sim::Home::domain(), home.jobFilePath()}); };
    ASSERT_NO_FATAL_FAILURE(startConnected());
    item.choose(Action::MenuToggle);
    ASSERT_TRUE(showsSoon(u"⏻ Sync paused · ann"_s));
    ASSERT_TRUE(tells(u"⏻ Sync paused. Your phone can't see this Mac."_s));
    EXPECT_EQ(home.agentPid(), 0);
    EXPECT_NE(bootstrap(), 0); // nor does the next login bring it back
    item.choose(Action::MenuToggle);
    ASSERT_TRUE(showsSoon(CONNECTED));
    item.choose(Action::QuitAll);
    ASSERT_TRUE(eventually([&] { return desktop.terminated == 1; }));
    EXPECT_EQ(home.agentPid(), 0);
    EXPECT_EQ(bootstrap(), 0);
}

TEST_F(Journey, ALaunchWithoutAJobFileRepairsAndTheAgentComesUp) {
    assembleBundle();
    ASSERT_TRUE(home.signIn(u"ann"_s));
    home.setScenario({{u"installHooks"_s, QJsonObject{{u"status"_s, 5}}}, // not decisive
                      {u"installService"_s, QJsonObject{{u"delayMs"_s, 300}}}});
    launch();
    EXPECT_EQ(item.statusLine(), u"Repairing…"_s);
    ASSERT_TRUE(showsSoon(CONNECTED));
    EXPECT_TRUE(QFileInfo::exists(home.jobFilePath()));
}

TEST_F(Journey, ABrokenAnswerCountsAsNoAnswerAndBlocksNothing) {
    ASSERT_NO_FATAL_FAILURE(startConnected());
    const double before = peakMemory();
    for (const QString &mode :
         {u"truncate"_s, u"huge"_s, u"wrong-types"_s, u"deep"_s, u"not-utf8"_s, u"drip"_s, u"array"_s, u"html"_s,
          u"garbage"_s, u"not-http"_s, u"silent"_s, u"close"_s, u"reset"_s}) {
        breakAgent({{u"mode"_s, mode}});
        ASSERT_TRUE(eventually([&] { return !item.icon.on; })) << mode.toStdString();
        int turns = 0; // the main thread goes on meanwhile
        const Timer beat = scheduler.every(50ms, [&turns] { ++turns; });
        ASSERT_TRUE(eventually([&] { return turns >= 5; }, std::chrono::seconds(2))) << mode.toStdString();
        home.setScenario({});
        ASSERT_TRUE(showsSoon(CONNECTED)) << mode.toStdString();
    }
    // A response may grow to 512 KiB before it is refused, and a buffer doubles as it grows.
    EXPECT_LT(peakMemory() - before, 64);
}

TEST_F(Journey, AnAnswerJustInTimeCountsAndALateOneDoesNot) {
    breakAgent({{u"delayMs"_s, 1200}});
    ASSERT_NO_FATAL_FAILURE(startConnected());
    breakAgent({{u"delayMs"_s, 2600}});
    ASSERT_TRUE(eventually([&] { return !item.icon.on; }));
}

} // namespace
} // namespace korvel::test
