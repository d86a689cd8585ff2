#include "desktop/panel_tray.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <algorithm>

namespace korvel::test {
namespace {

const auto SEED = static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED"));

constexpr int ENDS = 200;
constexpr qint64 MAX_END_MS = 2000;

/// A Mac on which everything takes its time.
struct QuitSoak : PanelTray {
    QRandomGenerator random{SEED};

    void SetUp() override {
        ASSERT_TRUE(home.startAccountServer());
        installAndSignIn();
        configure(u"server"_s, home.accountServer());
        const QJsonObject late{{u"delayMs"_s, 400}};
        home.setScenario({{u"update"_s, QJsonObject{{u"ver"_s, u"9.0"_s}, {u"bytes"_s, 2'000'000}}},
                          {u"faults"_s, QJsonObject{{u"/health"_s, late}}},
                          {u"launchctl"_s, QJsonObject{{u"print"_s, late},
                                                       {u"bootstrap"_s, late},
                                                       {u"bootout"_s, late},
                                                       {u"enable"_s, late},
                                                       {u"disable"_s, late}}}});
        const QJsonObject slow{{u"mode"_s, u"slow"_s}, {u"bytesPerSecond"_s, 100'000}};
        home.changeScenario(
            {{u"server"_s, QJsonObject{{u"faults"_s, QJsonObject{{home.updates().packagePath(), slow}}}}}});
    }
    bool isDownloading() {
        const auto menu = panel.menu();
        return std::any_of(menu.begin(), menu.end(),
                           [](const sim::PanelMenuEntry &e) { return e.title.startsWith(u"Downloading 9.0"); });
    }
    /// A poll, a download and commands to the service manager are in flight then.
    void keepBusy() {
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(panel.click(entry(u"Check for Updates… ("_s)));
        ASSERT_TRUE(panel.click(entry(u"⬆ Update to 9.0"_s)));
        ASSERT_TRUE(panel.waitUntil([this] { return isDownloading(); }, SOON));
        const QString pause = entry(u"Pause Sync"_s, std::chrono::milliseconds(100));
        ASSERT_TRUE(panel.click(pause.isEmpty() ? entry(u"Resume Sync"_s) : pause));
    }
};

TEST_F(QuitSoak, OfTwoHundredEndsAtRandomMomentsEachIsCleanAndPrompt) {
    for (int i = 1; i <= ENDS; ++i) {
        SCOPED_TRACE(i);
        ASSERT_NO_FATAL_FAILURE(keepBusy());
        QElapsedTimer clock;
        clock.start();
        const qint64 delay = random.bounded(2000);
        panel.waitUntil([&] { return clock.elapsed() >= delay; }, std::chrono::minutes(1));
        clock.start();
        end();
        EXPECT_LE(clock.elapsed(), MAX_END_MS);
    }
}

} // namespace
} // namespace korvel::test
