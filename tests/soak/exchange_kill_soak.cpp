#include "journey/update_journey.h"

#include <QRandomGenerator>
#include <csignal>
#include <unistd.h>

namespace korvel::test {
namespace {

constexpr int KILLS = 50;

/// Checks for updates and installs them while korvel-exchange is killed.
struct ExchangeKillSoak : UpdateJourney {
    QRandomGenerator random{static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED"))};
    int kills = 0;

    /// Performs `action`, kills its exchange at a random moment, and gives the notice at its end.
    QString performAndKill(Action action, quint32 withinMs) {
        notices.shown.clear();
        item.press(action);
        eventually([] { return false; }, std::chrono::milliseconds(random.bounded(withinMs)));
        const auto running = exchangesOf(::getpid());
        for (const pid_t process : running)
            ::kill(process, SIGKILL);
        kills += !running.isEmpty();
        EXPECT_TRUE(eventually([&] { return !notices.shown.empty() && !isBusy(); }));
        return notices.last();
    }
};

TEST_F(ExchangeKillSoak, EachKillIsReportedAsAFailureAndTheNextTryWorks) {
    const QJsonObject slow{{u"mode"_s, u"slow"_s}, {u"bytesPerSecond"_s, 1'000'000}};
    int failures = 0;
    const auto expect = [&](const QString &notice, Action action, quint32 withinMs) {
        if (performAndKill(action, withinMs) == notice)
            return;
        ++failures;
        ASSERT_TRUE(notices.shown.back().error) << notices.last().toStdString();
        ASSERT_TRUE(eventually([&] { return item.entry(action).enabled; }));
        ASSERT_EQ(perform(action), notice);
    };
    for (int i = 0; kills < KILLS && i < 10 * KILLS; ++i) {
        const QString version = u"2.%1"_s.arg(i);
        offer(version);
        home.changeScenario(serverFault(home.updates().packagePath(), slow));
        const QString available = u"⬆ Korvel %1 is available. Choose Update to %1 in the menu."_s.arg(version);
        ASSERT_NO_FATAL_FAILURE(expect(available, Action::CheckUpdate, 120));
        ASSERT_NO_FATAL_FAILURE(expect(u"✓ Updated to "_s + version, Action::InstallUpdate, 500));
    }
    EXPECT_GE(kills, KILLS);
    EXPECT_GT(failures, KILLS / 2); // the other kills came too late to matter
    tray.reset();
    EXPECT_TRUE(eventually([] { return exchangesOf(::getpid()).isEmpty(); }));
}

} // namespace
} // namespace korvel::test
