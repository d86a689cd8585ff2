#include "service/sync_toggle.h"

#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

struct SyncToggleTest : TrayFixture {
    void launchConnected() {
        launchBound();
        forget();
    }
    void launchPaused() {
        installAndBind();
        services.loaded = false;
        services.failBootstraps = 1;
        agentIsSilent();
        launch();
        forget();
    }
    void forget() {
        services.calls.clear();
        notices.shown.clear();
    }
    void toggle() {
        item.choose(Action::MenuToggle);
        scheduler.runDue();
    }
};

TEST_F(SyncToggleTest, APauseTakesTheJobDownForGood) {
    launchConnected();
    toggle();
    EXPECT_EQ(item.statusLine(), u"Switching…"_s);
    EXPECT_FALSE(item.entry(Action::MenuToggle).enabled);
    EXPECT_EQ(services.calls.mid(0, 3),
              (QStringList{u"bootout com.korvel.agent"_s, u"disable com.korvel.agent"_s, u"print com.korvel.agent"_s}));
    toggle(); // ignored meanwhile
    agentIsSilent();
    scheduler.advance(1s);
    EXPECT_EQ(services.calls.filter(u"bootout"_s).size(), 1);
    EXPECT_EQ(notices.last(), u"⏻ Sync paused. Your phone can't see this Mac."_s);
    EXPECT_EQ(item.statusLine(), u"⏻ Sync paused · ann"_s);
    EXPECT_EQ(item.entry(Action::MenuToggle).title, u"Resume Sync"_s);
}

TEST_F(SyncToggleTest, AJobThatNeverGoesAwayIsToldAfterSixSeconds) {
    launchConnected();
    services.stuck = true;
    toggle();
    scheduler.advance(6500ms);
    EXPECT_TRUE(notices.shown.empty());
    EXPECT_EQ(item.statusLine(), u"Switching…"_s);
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(), u"Couldn't pause sync. Try again."_s);
    EXPECT_TRUE(notices.shown.back().error);
    EXPECT_EQ(health().jobLoaded, true);
    EXPECT_LE(health().startingUntil.value_or(DISTANT_PAST), scheduler.now() + 20s); // a pause starts nothing
    EXPECT_NEAR(static_cast<double>(services.calls.filter(u"print"_s).size()), 21, 1);
}

TEST_F(SyncToggleTest, AResumeBringsTheJobBackAndTellsWhetherTheAgentAnswers) {
    launchPaused();
    toggle();
    EXPECT_EQ(services.calls.mid(0, 3),
              (QStringList{u"enable com.korvel.agent"_s, u"bootstrap com.korvel.agent.plist"_s,
                           u"print com.korvel.agent"_s}));
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(), u"● Sync resumed. Connecting…"_s);
    EXPECT_EQ(item.statusLine(), u"○ Starting… · ann"_s);
    nextPoll(ONLINE);
    EXPECT_EQ(item.statusLine(), u"● Connected · ann · 1 session"_s);
    agentIsSilent();
    scheduler.advance(3s);
    toggle(); // an agent that is silent while its job is loaded is paused too
    EXPECT_EQ(services.calls.filter(u"bootout"_s).size(), 1);
    scheduler.advance(1s);
    services.failBootstraps = 1; // a resume may succeed with its second attempt
    toggle();
    scheduler.advance(2500ms);
    EXPECT_EQ(notices.last(), u"● Sync resumed. Connecting…"_s);
}

TEST_F(SyncToggleTest, AResumeThatFailsTwiceTellsWhereToAllowIt) {
    launchPaused();
    services.failBootstraps = 10;
    toggle();
    scheduler.advance(2300ms);
    EXPECT_TRUE(notices.shown.empty());
    scheduler.advance(200ms);
    EXPECT_TRUE(notices.last().startsWith(u"Korvel couldn't start. Allow it in System Settings"_s));
    EXPECT_EQ(services.calls.filter(u"bootstrap"_s).size(), 2);
    EXPECT_EQ(services.calls.filter(u"enable"_s).size(), 1);
    EXPECT_EQ(item.statusLine(), u"⏻ Sync paused · ann"_s);
    EXPECT_TRUE(item.entry(Action::MenuToggle).enabled);
}

TEST_F(SyncToggleTest, EachNoticeSpeaksOfItsOwnToggle) {
    launchPaused();
    http.answer = nullptr; // the resume's last poll is in flight when a pause begins
    toggle();
    scheduler.advance(1s);
    ASSERT_FALSE(tray->currentState().service.busy);
    toggle();
    while (!http.open.empty())
        http.reply(0, noAnswer());
    scheduler.runDue();
    EXPECT_EQ(notices.last(), u"● Sync resumed. Connecting…"_s);
    EXPECT_FALSE(notices.shown.back().error);
}

TEST_F(SyncToggleTest, WhatCannotBeRunEndsTheToggleAndSaysNothingAboutTheJob) {
    for (const bool threads : {true, false}) {
        services.runs = true;
        launchConnected();
        agentIsSilent();
        services.runs = !threads; // one of the two is missing
        scheduler.haveThreads(threads);
        toggle();
        scheduler.advance(25s);
        EXPECT_EQ(notices.last(), u"Couldn't pause sync. Try again."_s);
        EXPECT_EQ(item.statusLine(), u"○ Korvel isn't responding. Retrying…"_s);
        EXPECT_TRUE(item.entry(Action::MenuToggle).enabled);
        scheduler.haveThreads(true);
    }
    services.runs = true;
    launchPaused();
    services.runs = false;
    toggle();
    scheduler.advance(10s);
    EXPECT_TRUE(notices.last().startsWith(u"Korvel couldn't start."_s));
    EXPECT_EQ(item.statusLine(), u"⏻ Sync paused · ann"_s);
}

TEST_F(SyncToggleTest, WithoutAccountOrJobFileTheMissingThingIsAskedFor) {
    placeAgent();
    agentIsSilent();
    launch();
    programs.runs.clear();
    home.bind();
    tray->reopen();
    scheduler.runDue();
    EXPECT_EQ(programs.runs.size(), 2u);
    home.writeConfig("{}");
    item.press(Action::MenuToggle);
    EXPECT_TRUE(loginPanel.visible);
    EXPECT_FALSE(tray->currentState().service.busy);
}

} // namespace
} // namespace korvel::test
