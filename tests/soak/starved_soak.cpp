#include "desktop/panel_tray.h"

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace korvel::test {
namespace {

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
        panel.waitUntil([] { return false; }, STARVED_FOR);
        ::prlimit(pid, resource, &before, nullptr);
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
    // With fewer than it has open already, poll(2) would fail.
    const QDir descriptors(u"/proc/%1/fd"_s.arg(process->processId()), {}, QDir::NoSort, QDir::System);
    starve(RLIMIT_NOFILE, descriptors.count());
}

TEST_F(StarvedSoak, WithoutThreadsEverythingEndsAndAfterwardsEverythingWorks) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "no limit keeps root from starting threads";
    starve(RLIMIT_NPROC, 1);
}

TEST_F(StarvedSoak, AfterMinutesWithoutTheProcessorItTellsTheTruthWithoutCatchingUp) {
    const auto pid = static_cast<pid_t>(process->processId());
    ASSERT_EQ(::kill(pid, SIGSTOP), 0);
    panel.waitUntil([] { return false; }, std::chrono::minutes(2));
    ASSERT_TRUE(home.signOut());
    const auto before = home.requests().size();
    ASSERT_EQ(::kill(pid, SIGCONT), 0);
    ASSERT_TRUE(lineIs(u"Not signed in"_s));
    EXPECT_LE(home.requests().size() - before, 5);
    end();
}

} // namespace
} // namespace korvel::test
