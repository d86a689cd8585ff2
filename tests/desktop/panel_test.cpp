#include "app/deployment.h"
#include "journey/journey.h"
#include "simulator/desktop/panel_probe.h"
#include "status/health.h"
#include "ui/menu_view.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QProcess>
#include <csignal>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// The tray program in the panel of this desktop.
struct PanelTest : ::testing::Test {
    QTemporaryDir folder;
    sim::SimulatedHome home{folder.filePath(u"home"_s)};
    sim::PanelProbe panel;
    QProcess tray;
    FixedConfig fixed = makeFixedConfig(builtDeployment(), {.preferredLanguages = {},
                                                            .home = home.path(),
                                                            .hookPort = std::nullopt,
                                                            .korvelHome = std::nullopt,
                                                            .automation = std::nullopt});

    ~PanelTest() override {
        tray.terminate();
        EXPECT_TRUE(tray.state() == QProcess::NotRunning || tray.waitForFinished(10000));
    }

    void start(const QString &language) {
        ASSERT_TRUE(home.signIn(u"ann"_s));
        ASSERT_TRUE(home.installJobFile());
        QProcessEnvironment env = home.environment();
        env.insert(u"LANGUAGE"_s, language);
        tray.setProcessEnvironment(env);
        tray.setProcessChannelMode(QProcess::ForwardedChannels);
        tray.start(home.assembleBundle(trayProgram()), {});
        ASSERT_TRUE(tray.waitForStarted());
    }
    bool appears() { return panel.waitForItem(std::chrono::seconds(20), tray.processId()); }
    bool shows(const QString &line) {
        const bool shown = panel.waitUntil([&] { return panel.statusLine() == line; }, std::chrono::seconds(15));
        EXPECT_EQ(panel.statusLine(), line);
        return shown;
    }
    QStringList panelMenu() {
        QStringList lines;
        for (const sim::PanelMenuEntry &e : panel.menu())
            lines.append(e.separator ? u"---"_s : (e.enabled ? u"on "_s : u"off "_s) + e.title);
        return lines;
    }
    /// The menu that the rules give for a connected agent with this report.
    QStringList ruledMenu(const QJsonObject &health) const {
        TrayState state;
        applyHealth(state, health, {.now = Clock::now(), .bound = true, .username = u"ann"_s});
        const Situation situation{.state = state,
                                  .config = fixed,
                                  .timing = timingOf(state.health, Clock::now()),
                                  .bound = true,
                                  .plistExists = true,
                                  .server = fixed.DEFAULT_SERVER};
        QStringList lines;
        for (const MenuEntry &e : menuView(situation).entries)
            lines.append(e.isSeparator() ? u"---"_s : (e.enabled ? u"on "_s : u"off "_s) + e.title);
        return lines;
    }
};

TEST_F(PanelTest, ThePanelShowsTheMenuThatTheRulesGiveInBothLanguages) {
    const QJsonObject health{
        {u"ok"_s, true},
        {u"online"_s, true},
        {u"account"_s, u"a_n_n & <b>bo</b> & \"c\""_s},
        {u"sessions"_s, 2},
        {u"perms"_s, QJsonObject{{u"ok"_s, false}, {u"missing"_s, QJsonArray{u"Screen_1"_s, u"麦克风"_s}}}},
        {u"e2ee"_s, QJsonObject{{u"state"_s, u"active"_s},
                                {u"relay"_s, u"ok"_s},
                                {u"pending"_s, QJsonArray{QJsonObject{{u"name"_s, u"Ann's\tphone_2 & co"_s}}}}}}};
    // Without the full list the summary of the report is what is shown.
    home.setScenario(
        {{u"health"_s, health}, {u"faults"_s, QJsonObject{{u"/perms"_s, QJsonObject{{u"mode"_s, u"close"_s}}}}}});
    for (const bool chinese : {false, true}) {
        const LanguageScope language(chinese);
        start(chinese ? u"zh_CN"_s : u"en"_s);
        ASSERT_TRUE(appears());
        const QStringList expected = ruledMenu(health);
        panel.waitUntil([&] { return panelMenu() == expected; }, std::chrono::seconds(15));
        EXPECT_EQ(panelMenu(), expected);
        EXPECT_EQ(panel.item()->toolTipTitle, chinese ? u"Korvel · 缺少权限：Screen_1、麦克风"_s
                                                      : u"Korvel · Missing permissions: Screen_1, 麦克风"_s);
        tray.terminate();
        ASSERT_TRUE(tray.waitForFinished(10000));
    }
}

TEST_F(PanelTest, AnEntryChosenInThePanelActsAndNothingIsSentWhileNothingChanges) {
    const QString connected = u"● Connected · ann · 0 sessions"_s;
    start(u"en"_s);
    ASSERT_TRUE(appears());
    const QList<QImage> starting = panel.item()->icons;
    ASSERT_TRUE(shows(connected));
    EXPECT_NE(panel.item()->icons, starting);
    ASSERT_TRUE(panel.waitUntil([&] { return panel.item()->icons.size() >= 2; }, std::chrono::seconds(1)));

    panel.clearCounts();
    const auto polls = home.requests().size();
    ASSERT_TRUE(panel.waitUntil([&] { return home.requests().size() >= polls + 3; }, std::chrono::seconds(15)));
    EXPECT_EQ(panel.counts().total(), 0);

    ASSERT_TRUE(panel.click(u"Pause Sync"_s));
    ASSERT_TRUE(shows(u"⏻ Sync paused · ann"_s));
    EXPECT_EQ(home.agentPid(), 0);
    ASSERT_TRUE(panel.click(u"Quit Korvel"_s));
    EXPECT_TRUE(panel.waitUntil([&] { return tray.state() == QProcess::NotRunning; }, std::chrono::seconds(10)));
    EXPECT_EQ(tray.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(tray.exitCode(), 0);
}

TEST_F(PanelTest, AKilledAgentIsToldWithinThreeSecondsAndABit) {
    start(u"en"_s);
    ASSERT_TRUE(appears());
    ASSERT_TRUE(shows(u"● Connected · ann · 0 sessions"_s));
    home.changeScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 60000}}}});
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(home.killAgent(SIGKILL));
    ASSERT_TRUE(panel.waitUntil([&] { return panel.statusLine() != u"● Connected · ann · 0 sessions"; },
                                std::chrono::seconds(10)));
    EXPECT_LE(clock.elapsed(), 3200 + 20); // and one look of the probe
}

TEST_F(PanelTest, APanelThatComesLateFindsTheItem) {
    const QString control = qEnvironmentVariable("KORVEL_PANEL");
    ASSERT_EQ(QProcess::execute(control, {u"stop"_s}), 0);
    start(u"en"_s);
    ASSERT_TRUE(panel.waitUntil([&] { return home.agentPid() != 0; }, std::chrono::seconds(15)));
    ASSERT_EQ(QProcess::execute(control, {u"start"_s}), 0);
    ASSERT_TRUE(appears());
    EXPECT_TRUE(shows(u"● Connected · ann · 0 sessions"_s));
}

} // namespace
} // namespace korvel::test
