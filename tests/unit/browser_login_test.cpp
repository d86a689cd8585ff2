#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

struct BrowserLoginTest : TrayFixture {
    QByteArray start = R"({"id":"a+/b","url":"https://own.example/signin"})";
    QByteArray status = R"({"status":"pending"})";

    void SetUp() override {
        makeInternational();
        home.writeConfig(R"({"localToken":"secret"})");
        http.respond = [this](const HttpRequest &r) {
            return json(r.url.endsWith(u"/auth/start") ? start : r.url.contains(u"/auth/status") ? status : ONLINE);
        };
    }
    /// What the agent's sign-in interface has received since the last call.
    QStringList sent() { return std::exchange(http.paths, {}).filter(u"/auth/"_s); }
    void choose() { item.press(Action::BrowserLogin); }
};

TEST_F(BrowserLoginTest, ThePageOpensAndPollsGoOnUntilAnOutcome) {
    launch();
    choose();
    EXPECT_EQ(desktop.opened, QStringList{u"https://own.example/signin"_s});
    EXPECT_EQ(http.last.body, R"({"device":"Studio"})"_ba);
    EXPECT_EQ(http.last.timeout, 10s);
    choose(); // the same page again
    EXPECT_EQ(desktop.opened.size(), 2);
    scheduler.advance(2s);
    const QString poll = u"/auth/status?id=a%2B%2Fb"_s;
    EXPECT_EQ(sent(), (QStringList{u"/auth/start"_s, poll, poll}));
    const std::pair<QByteArray, QString> outcomes[] = {{R"({"status":"done","user":"Ann"})", u"● Signed in as Ann"_s},
                                                       {R"({"status":"failed","error":"No."})", u"No."_s},
                                                       {R"({"status":"failed"})", u"Couldn't sign in."_s},
                                                       {R"({"status":"cancelled"})", {}},
                                                       {R"({"status":"expired"})", {}}};
    for (const auto &[outcome, notice] : outcomes) {
        status = "not json";
        scheduler.advance(3s); // an unreadable response is no outcome
        forget();
        http.paths.clear();
        status = outcome;
        scheduler.advance(5s);
        EXPECT_EQ(sent(), QStringList{poll}) << outcome.constData();
        EXPECT_EQ(notices.take(), notice);
        choose();
    }
    EXPECT_EQ(pairPanel.presented, 1);
}

TEST_F(BrowserLoginTest, AfterItsTimeAndTheGracePollingStopsSilently) {
    launch();
    choose();
    forget();
    scheduler.advance(599s);
    choose();
    EXPECT_EQ(desktop.opened.size(), 2);
    scheduler.advance(31s);
    http.paths.clear();
    scheduler.advance(10s);
    choose(); // a new sign-in
    EXPECT_EQ(sent(), QStringList{u"/auth/start"_s});
    EXPECT_EQ(notices.take(), u""_s);
}

TEST_F(BrowserLoginTest, APageThatIsNotSecureIsNotOpened) {
    launch();
    forget();
    for (const char *response :
         {R"({"id":"a","url":"http://own.example/"})", R"({"id":"a","url":"file:///etc/passwd"})",
          R"({"id":"a","url":"https:"})", R"({"id":1,"url":"https://own.example/"})", "{}"}) {
        start = response;
        choose();
        EXPECT_EQ(notices.take(), u"Couldn't start signing in. Try again later."_s) << response;
    }
    EXPECT_TRUE(desktop.opened.isEmpty());
}

TEST_F(BrowserLoginTest, ResponsesToAnAttemptThatAnotherSignInReplacedAreIgnored) {
    launch();
    http.respond = nullptr;
    choose();
    item.press(Action::LoginDialog);
    alerts.answer(0, {u"ann"_s, u"pass"_s});
    complete(u"/login"_s, json(R"({"agentToken":"new","agentId":"id"})"));
    scheduler.runDue();
    complete(u"/auth/start"_s, json(start));
    EXPECT_TRUE(desktop.opened.isEmpty());
    choose();
    complete(u"/auth/start"_s, json(start));
    EXPECT_EQ(desktop.opened.size(), 1);
    scheduler.advance(1s);
    EXPECT_EQ(http.last.timeout, 3s);
    item.press(Action::LogoutDialog);
    alerts.answer(0);
    complete(u"/e2ee/logout"_s, json("{}"));
    complete(u"/auth/status?id=a%2B%2Fb"_s, json(R"({"status":"done","user":"Bob"})"));
    EXPECT_EQ(notices.last(), u"⏻ Signing out…"_s);
}

TEST_F(BrowserLoginTest, AnAgentThatDoesNotStartIsRestartedOnceAndGivenUp) {
    agentResponds(SILENCE);
    launch();
    services.calls.clear();
    choose();
    EXPECT_EQ(notices.last(), u"Starting…"_s);
    scheduler.advance(7s);
    choose(); // starts nothing
    scheduler.advance(8s);
    EXPECT_EQ(notices.last(), u"Korvel couldn't start. Try again later."_s);
    EXPECT_EQ(services.calls.filter(u"enable"_s).size(), 1);
    choose();
    EXPECT_EQ(notices.last(), u"Starting…"_s); // a new sign-in
}

} // namespace
} // namespace korvel::test
