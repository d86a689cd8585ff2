#include "journey/exchange_processes.h"
#include "journey/update_journey.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <csignal>
#include <unistd.h>

namespace korvel::test {
namespace {

const auto SEED = static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED"));

constexpr int KILLS = 50;

/// Checks for updates and installs them while korvel-exchange is killed.
struct ExchangeKillSoak : UpdateJourney {
    QRandomGenerator random{SEED};

    /// Chooses `action`, kills what runs for it at a random moment, and waits until the user is told how it ended.
    /// Whether anything was killed.
    bool performAndKill(Action action, quint32 withinMs) {
        notices.shown.clear();
        item.press(action);
        QElapsedTimer clock;
        clock.start();
        const qint64 moment = random.bounded(withinMs);
        eventually([&] { return clock.elapsed() >= moment; });
        const QList<qint64> struck = exchangesOf(::getpid());
        for (const qint64 pid : struck)
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        EXPECT_TRUE(eventually([&] { return !notices.shown.empty() && !isBusy(); }));
        return !struck.isEmpty();
    }
};

TEST_F(ExchangeKillSoak, EachKillIsAFailureThatIsToldAndTheNextTryWorks) {
    int kills = 0, told = 0;
    for (int i = 0; kills < KILLS && i < 10 * KILLS; ++i) {
        const QString version = u"2.%1"_s.arg(i);
        const QString available = u"⬆ Korvel %1 is available. Choose Update to %1 in the menu."_s.arg(version);
        const QString updated = u"✓ Updated to "_s + version;
        offer(version);
        home.changeScenario(
            {{u"server"_s, QJsonObject{{u"faults"_s, QJsonObject{{home.updates().packagePath(),
                                                                  QJsonObject{{u"mode"_s, u"slow"_s},
                                                                              {u"bytesPerSecond"_s, 1'000'000}}}}}}}});
        kills += performAndKill(Action::CheckUpdate, 120);
        told += notices.last() != available;
        ASSERT_TRUE(notices.last() == available || notices.shown.back().error) << notices.last().toStdString();
        ASSERT_EQ(check(), available);
        kills += performAndKill(Action::InstallUpdate, 500);
        told += notices.last() != updated;
        if (notices.last() == updated)
            continue;
        ASSERT_TRUE(notices.shown.back().error) << notices.last().toStdString();
        ASSERT_TRUE(isOffered(version));
        ASSERT_EQ(install(), updated);
    }
    EXPECT_GE(kills, KILLS);
    EXPECT_GT(told, KILLS / 2); // the others came too late to matter
    tray.reset();
    EXPECT_TRUE(eventually([] { return exchangesOf(::getpid()).isEmpty(); }));
}

} // namespace
} // namespace korvel::test
