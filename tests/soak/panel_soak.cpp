#include "desktop/panel_tray.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <algorithm>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace korvel::test {
namespace {

constexpr int ENDS = 200;
constexpr qint64 MAX_END_MS = 2000;

/// A Mac on which everything takes its time.
struct QuitSoak : PanelTray {
    QRandomGenerator random{static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED"))};

    void SetUp() override {
        ASSERT_TRUE(home.startAccountServer());
        installAndSignIn();
        configure(u"server"_s, home.accountServer());
        const QJsonObject late{{u"delayMs"_s, 400}}, slow{{u"mode"_s, u"slow"_s}, {u"bytesPerSecond"_s, 100'000}};
        QJsonObject launchctl;
        for (const char *subcommand : {"print", "bootstrap", "bootout", "enable", "disable"})
            launchctl[QLatin1StringView(subcommand)] = late;
        home.setScenario(
            {{u"update"_s, QJsonObject{{u"ver"_s, u"9.0"_s}, {u"bytes"_s, 2'000'000}}}, {u"launchctl"_s, launchctl}});
        home.changeScenario(agentFault(u"/health"_s, late));
        home.changeScenario(serverFault(home.updates().packagePath(), slow));
    }
    /// Starts a poll, a download and commands to the service manager.
    void keepBusy() {
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(panel.click(entry(u"Check for Updates… ("_s)));
        ASSERT_TRUE(panel.click(entry(u"⬆ Update to 9.0"_s)));
        ASSERT_TRUE(soon([this] {
            return std::ranges::any_of(panel.menu(),
                                       [](const auto &e) { return e.title.startsWith(u"Downloading 9.0"); });
        }));
        const QString pause = entry(u"Pause Sync"_s, std::chrono::milliseconds(100));
        ASSERT_TRUE(panel.click(pause.isEmpty() ? entry(u"Resume Sync"_s) : pause));
    }
};

TEST_F(QuitSoak, OfTwoHundredEndsAtRandomMomentsEachIsCleanAndPrompt) {
    for (int i = 1; i <= ENDS; ++i) {
        SCOPED_TRACE(i);
        ASSERT_NO_FATAL_FAILURE(keepBusy());
        pass(std::chrono::milliseconds(random.bounded(2000)));
        QElapsedTimer clock;
        clock.start();
        end();
        EXPECT_LE(clock.elapsed(), MAX_END_MS);
    }
}

constexpr auto STARVED_FOR = std::chrono::seconds(30);

/// The tray while the system gives it no more of one thing.
struct StarvedSoak : PanelTray {
    void SetUp() override {
        installAndSignIn();
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(lineIs(CONNECTED));
    }
    void starve(__rlimit_resource resource, rlim_t most) {
        const auto pid = static_cast<pid_t>(process->processId());
        rlimit before{};
        ASSERT_EQ(::prlimit(pid, resource, nullptr, &before), 0);
        const rlimit little{.rlim_cur = most, .rlim_max = before.rlim_max};
        ASSERT_EQ(::prlimit(pid, resource, &little, nullptr), 0);
        ASSERT_TRUE(panel.click(u"Pause Sync"_s));
        ASSERT_NE(entry(u"Pause Sync"_s, STARVED_FOR), QString()); // it ends, and has paused nothing
        pass(STARVED_FOR);
        ASSERT_EQ(::prlimit(pid, resource, &before, nullptr), 0);
        ASSERT_TRUE(lineIs(CONNECTED));
        ASSERT_TRUE(panel.click(u"Pause Sync"_s));
        ASSERT_TRUE(lineIs(u"⏻ Sync paused · ann"_s));
        ASSERT_TRUE(panel.click(entry(u"Resume Sync"_s)));
        ASSERT_TRUE(lineIs(CONNECTED));
        end();
    }
};

TEST_F(StarvedSoak, WithoutDescriptorsEverythingEndsAndAfterwardsEverythingWorks) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer examines memory through a pipe, which it cannot open then";
#endif
    // From the one that the program would get next. With fewer than it has open already, poll(2) would fail.
    rlim_t next = 0;
    while (QFileInfo(u"/proc/%1/fd/%2"_s.arg(process->processId()).arg(next)).isSymLink())
        ++next;
    starve(RLIMIT_NOFILE, next);
}

TEST_F(StarvedSoak, WithoutThreadsEverythingEndsAndAfterwardsEverythingWorks) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "no limit keeps root from starting threads";
    starve(RLIMIT_NPROC, 1);
}

TEST_F(StarvedSoak, AfterMinutesWithoutTheProcessorItTellsTheTruthWithoutCatchingUp) {
    const auto pid = static_cast<pid_t>(process->processId());
    ASSERT_EQ(::kill(pid, SIGSTOP), 0);
    pass(std::chrono::minutes(2));
    ASSERT_TRUE(home.signOut());
    const auto before = home.requests().size();
    ASSERT_EQ(::kill(pid, SIGCONT), 0);
    ASSERT_TRUE(lineIs(u"Not signed in"_s));
    EXPECT_LE(home.requests().size() - before, 5);
    end();
}

} // namespace
} // namespace korvel::test
