#include "desktop/panel_tray.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <algorithm>

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
        panel.waitUntil([] { return false; }, std::chrono::milliseconds(random.bounded(2000)));
        QElapsedTimer clock;
        clock.start();
        end();
        EXPECT_LE(clock.elapsed(), MAX_END_MS);
    }
}

} // namespace
} // namespace korvel::test
