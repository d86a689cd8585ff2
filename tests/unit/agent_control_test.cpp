#include "support/tray_fixture.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct AgentControlTest : TrayFixture {
    TrayState state;
    int repairs = 0;
    AgentConfig config{home.paths};
    AgentControl control{state,
                         home.fixed,
                         home.paths,
                         config,
                         services,
                         programs,
                         desktop,
                         scheduler,
                         {.showHUD = [this](const Notice &n) { notices.show({.text = n.text, .error = n.error}, {}); },
                          .repairService = [this] { ++repairs; }}};

    QStringList callsOf(void (AgentControl::*operation)(std::function<void()>)) {
        services.calls.clear();
        bool ended = false;
        (control.*operation)([&] { ended = true; });
        scheduler.settle();
        EXPECT_TRUE(ended);
        return services.calls;
    }
};

TEST_F(AgentControlTest, LaunchLoadsTheJobOnlyOfABoundAndInstalledMac) {
    EXPECT_TRUE(callsOf(&AgentControl::ensureAgentLoaded).isEmpty());
    home.bind();
    EXPECT_TRUE(callsOf(&AgentControl::ensureAgentLoaded).isEmpty());
    home.installJobFile();
    EXPECT_EQ(callsOf(&AgentControl::ensureAgentLoaded),
              (QStringList{u"print com.korvel.agent"_s, u"bootstrap com.korvel.agent.plist"_s}));
    EXPECT_EQ(state.health.startingUntil, scheduler.now() + 25s);
    EXPECT_EQ(callsOf(&AgentControl::ensureAgentLoaded), QStringList{u"print com.korvel.agent"_s});
}

TEST_F(AgentControlTest, ARestartUndoesAPauseAndReplacesARunningInstance) {
    callsOf(&AgentControl::restartAgent);
    EXPECT_EQ(repairs, 1);
    home.installJobFile();
    EXPECT_EQ(callsOf(&AgentControl::restartAgent),
              (QStringList{u"enable com.korvel.agent"_s, u"bootstrap com.korvel.agent.plist"_s}));
    EXPECT_EQ(callsOf(&AgentControl::restartAgent).last(), u"kickstart com.korvel.agent"_s);
    EXPECT_EQ(state.health.startingUntil, scheduler.now() + 25s);
}

TEST_F(AgentControlTest, QuittingStopsTheAgentAndItsStraysBeforeTheTrayGoes) {
    services.loaded = true;
    control.quitAll();
    control.quitAll();
    EXPECT_EQ(notices.last(), u"⏻ Quitting…"_s);
    EXPECT_EQ(desktop.terminated, 0);
    scheduler.settle();
    EXPECT_EQ(services.calls, (QStringList{u"bootout com.korvel.agent"_s, u"bootout com.korvel.tray"_s}));
    ASSERT_EQ(programs.runs.size(), 2u);
    EXPECT_EQ(programs.runs[0].executable, u"/usr/bin/pkill"_s);
    EXPECT_EQ(programs.runs[0].arguments, (QStringList{u"-f"_s, u"Korvel.app/Contents/Resources/korvel-agent"_s}));
    EXPECT_EQ(programs.runs[1].arguments, (QStringList{u"-f"_s, u"korvel-agent.mjs run"_s}));
    EXPECT_EQ(desktop.terminated, 1);
}

TEST_F(AgentControlTest, AServiceManagerThatHangsDoesNotKeepTheUserFromQuitting) {
    scheduler.holdBackground(true);
    control.quitAll();
    scheduler.advance(30s);
    EXPECT_EQ(desktop.terminated, 1);
}

TEST_F(AgentControlTest, TheLogIsOpenedWhenThereIsOne) {
    control.openLog();
    EXPECT_EQ(notices.last(), u"No log yet"_s);
    home.write(home.paths.logFile, "line");
    control.openLog();
    EXPECT_EQ(desktop.opened, QStringList{u"file://"_s + home.paths.logFile});
}

} // namespace
} // namespace korvel::test
