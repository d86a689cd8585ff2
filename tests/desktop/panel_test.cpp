#include "desktop/panel_tray.h"

#include "app/model/deployment.h"
#include "status/health.h"
#include "ui/menu/menu_view.h"

#include <QJsonArray>

namespace korvel::test {
namespace {

struct PanelTest : PanelTray {
    void SetUp() override { installAndSignIn(); }
    template <class Entries>
    static QStringList lines(const Entries &entries, bool (*isSeparator)(const typename Entries::value_type &)) {
        QStringList all;
        for (const auto &e : entries)
            all.append(isSeparator(e) ? u"---"_s : (e.enabled ? u"on "_s : u"off "_s) + e.title);
        return all;
    }
    QStringList panelMenu() {
        return lines(panel.menu(), [](const sim::PanelMenuEntry &e) { return e.separator; });
    }
    /// The menu that the rules give for a connected agent with this report.
    QStringList ruledMenu(const QJsonObject &health) const {
        const FixedConfig built = makeFixedConfig(builtDeployment(), launchEnvironment);
        TrayState state;
        applyHealth(state, health, {.now = Clock::now(), .bound = true, .username = u"ann"_s});
        const Situation situation{.state = state,
                                  .isCn = built.IS_CN,
                                  .version = built.VERSION,
                                  .timing = timingOf(state.health, Clock::now()),
                                  .bound = true,
                                  .plistExists = true,
                                  .server = built.DEFAULT_SERVER};
        return lines(menuView(situation).entries, [](const MenuEntry &e) { return e.isSeparator(); });
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
        ASSERT_NO_FATAL_FAILURE(start(chinese ? u"zh_CN"_s : u"en"_s));
        const QStringList expected = ruledMenu(health);
        panel.waitUntil([&] { return panelMenu() == expected; }, SOON);
        EXPECT_EQ(panelMenu(), expected);
        EXPECT_EQ(panel.item()->toolTipTitle, chinese ? u"Korvel · 缺少权限：Screen_1、麦克风"_s
                                                      : u"Korvel · Missing permissions: Screen_1, 麦克风"_s);
        end();
    }
}

TEST_F(PanelTest, APanelThatComesLateFindsTheItem) {
    const QString control = qEnvironmentVariable("KORVEL_PANEL");
    ASSERT_EQ(QProcess::execute(control, {u"stop"_s}), 0);
    ASSERT_NO_FATAL_FAILURE(startProgram());
    ASSERT_TRUE(panel.waitUntil([&] { return home.agentPid() != 0; }, SOON));
    ASSERT_EQ(QProcess::execute(control, {u"start"_s}), 0);
    ASSERT_TRUE(panel.waitForItem(SOON, process->processId()));
    EXPECT_TRUE(lineIs(CONNECTED));
}

} // namespace
} // namespace korvel::test
