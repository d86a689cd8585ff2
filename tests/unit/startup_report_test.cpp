#include "support/tray_fixture.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct StartupReportTest : TrayFixture {
    /// Launches and gives the notice that is shown by `within`.
    QString reportWithin(milliseconds within) {
        launch();
        scheduler.advance(within);
        return notices.last();
    }
};

TEST_F(StartupReportTest, AnAgentThatIsOnlineIsReportedAtOnce) {
    installAndBind();
    agentAnswers(ONLINE);
    EXPECT_EQ(reportWithin(0ms), u"● Connected · ann · 1 session · Double-click Korvel to pause or resume sync"_s);
    EXPECT_EQ(notices.shown.size(), 1u);
    scheduler.advance(2500ms);
    EXPECT_TRUE(notices.visible);
    scheduler.advance(200ms);
    EXPECT_FALSE(notices.visible);
}

TEST_F(StartupReportTest, ASilentAgentIsWaitedForSevenAndAHalfSeconds) {
    installAndBind();
    agentIsSilent();
    EXPECT_EQ(reportWithin(7400ms), u""_s);
    scheduler.advance(200ms);
    EXPECT_EQ(notices.last(), u"○ Starting… · ann · Double-click Korvel to pause or resume sync"_s);
    scheduler.advance(60s);
    EXPECT_EQ(notices.shown.size(), 1u);
}

TEST_F(StartupReportTest, AnAgentThatComesUpMeanwhileIsReportedThen) {
    installAndBind();
    agentIsSilent();
    launch();
    scheduler.advance(2s);
    agentAnswers(ONLINE);
    scheduler.advance(1s);
    EXPECT_TRUE(notices.last().startsWith(u"● Connected"_s));
}

TEST_F(StartupReportTest, ASilentServiceManagerDoesNotHoldTheReportOfAnAgentThatAnswers) {
    installAndBind();
    agentAnswers(ONLINE);
    scheduler.holdBackground(true);
    launch();
    scheduler.advance(3s);
    EXPECT_EQ(item.statusLine(), u"● Connected · ann · 1 session"_s);
}

TEST_F(StartupReportTest, AMissingPairingIsReportedAtOnceUnlessEncryptionIsStillStarting) {
    installAndBind();
    agentAnswers(R"({"ok":true,"e2ee":{"state":"starting","required":true}})");
    EXPECT_EQ(reportWithin(1s), u""_s);
    agentAnswers(R"({"ok":true,"e2ee":{"state":"waiting"}})");
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(),
              u"○ Sign in to Korvel on your phone, then pair this Mac · ann · Double-click Korvel to show the "
              "pairing code"_s);
}

TEST_F(StartupReportTest, WhatWaitingWouldNotChangeIsReportedAtOnceAndOnce) {
    const QByteArray silence;
    const struct {
        bool bound, installed;
        QByteArray answer;
        QString notice;
    } cases[] = {
        {true, true, silence, u"⏻ Sync paused · ann · Double-click Korvel to pause or resume sync"_s},
        {true, true, SIGNED_OUT, u"You've been signed out. Sign in again."_s},
        {true, false, OFFLINE, u"Korvel isn't installed correctly. Reinstall Korvel."_s}, // nothing to repair with
        {false, true, silence, u"Not signed in · Double-click Korvel to sign in"_s},
    };
    services.failBootstraps = 1000; // disabled
    for (const auto &c : cases) {
        QFile::remove(home.paths.agentPlist);
        home.writeConfig("{}");
        if (c.bound)
            home.bind();
        if (c.installed)
            home.installJobFile();
        http.answer = [&c](const HttpRequest &) { return c.answer.isEmpty() ? noAnswer() : json(c.answer); };
        notices.shown.clear();
        EXPECT_EQ(reportWithin(0ms), c.notice);
        scheduler.advance(10s);
        EXPECT_EQ(notices.shown.size(), 1u) << c.notice.toStdString();
        tray.reset();
    }
}

} // namespace
} // namespace korvel::test
