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

TEST_F(StartupReportTest, APausedAgentIsReportedAtOnce) {
    installAndBind();
    agentIsSilent();
    services.loaded = false;
    services.failBootstraps = 1000; // disabled
    EXPECT_EQ(reportWithin(0ms), u"⏻ Sync paused · ann · Double-click Korvel to pause or resume sync"_s);
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

TEST_F(StartupReportTest, ALostSignInIsToldOnce) {
    installAndBind();
    agentAnswers(SIGNED_OUT);
    EXPECT_EQ(reportWithin(10s), u"You've been signed out. Sign in again."_s);
    EXPECT_EQ(notices.shown.size(), 1u);
}

TEST_F(StartupReportTest, AMissingJobFileIsReportedAtOnceAndWithoutAHint) {
    home.bind();
    agentAnswers(R"({"ok":true,"online":false})");
    EXPECT_EQ(reportWithin(0ms), u"Korvel isn't installed correctly. Reinstall Korvel."_s); // nothing to repair with
}

TEST_F(StartupReportTest, AnUnboundMacIsToldHowToSignIn) {
    home.installJobFile();
    agentIsSilent();
    EXPECT_EQ(reportWithin(0ms), u"Not signed in · Double-click Korvel to sign in"_s);
}

} // namespace
} // namespace korvel::test
