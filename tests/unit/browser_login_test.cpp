#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

struct BrowserLoginTest : TrayFixture {
    QByteArray start = R"({"id":"a+/b","url":"https://own.example/signin"})";
    QByteArray status = R"({"status":"pending"})";
    QStringList asked; ///< Paths of the agent's sign-in interface.

    void SetUp() override {
        makeInternational();
        home.writeConfig(R"({"localToken":"secret"})");
        http.answer = [this](const HttpRequest &r) {
            const QString path = r.url.section(u"8790"_s, 1);
            if (path.startsWith(u"/auth/"))
                asked.append(path);
            return json(path == u"/auth/start" ? start : path.startsWith(u"/auth/status") ? status : ONLINE);
        };
    }
    void choose() { item.press(Action::BrowserLogin); }
};

TEST_F(BrowserLoginTest, ThePageOpensOnceAndTheOutcomeIsToldOnce) {
    launch();
    choose();
    EXPECT_EQ(desktop.opened, QStringList{u"https://own.example/signin"_s});
    EXPECT_EQ(http.last.body, R"({"device":"Studio"})"_ba);
    EXPECT_EQ(http.last.timeout, 10s);
    choose(); // the same page again
    EXPECT_EQ(desktop.opened.size(), 2);
    scheduler.advance(2s);
    EXPECT_EQ(asked, (QStringList{u"/auth/start"_s, u"/auth/status?id=a%2B%2Fb"_s, u"/auth/status?id=a%2B%2Fb"_s}));
    status = R"({"status":"done","user":"Ann"})";
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(), u"● Signed in as Ann"_s);
    EXPECT_EQ(pairPanel.presented, 1);
    asked.clear();
    scheduler.advance(10s);
    EXPECT_TRUE(asked.isEmpty());
}

TEST_F(BrowserLoginTest, EachOtherOutcomeEndsTheAttempt) {
    const struct {
        const char *status;
        QString notice; // empty: none
    } cases[] = {{R"({"status":"failed","error":"Not allowed."})", u"Not allowed."_s},
                 {R"({"status":"failed"})", u"Couldn't sign in."_s},
                 {R"({"status":"cancelled"})", {}},
                 {R"({"status":"expired"})", {}}};
    launch();
    for (const auto &c : cases) {
        status = "not json";
        choose();
        scheduler.advance(3s); // a poll that cannot be read is no outcome
        asked.clear();
        notices.shown.clear();
        status = c.status;
        scheduler.advance(5s);
        EXPECT_EQ(asked.size(), 1) << c.status;
        EXPECT_EQ(notices.last(), c.notice);
    }
}

TEST_F(BrowserLoginTest, AfterItsTimeAndTheGracePollingStopsSilently) {
    launch();
    choose();
    notices.shown.clear();
    scheduler.advance(599s);
    choose();
    EXPECT_EQ(desktop.opened.size(), 2);
    scheduler.advance(31s);
    asked.clear();
    scheduler.advance(10s);
    EXPECT_TRUE(asked.isEmpty());
    EXPECT_TRUE(notices.shown.empty());
    choose(); // a new sign-in
    EXPECT_EQ(asked, QStringList{u"/auth/start"_s});
}

TEST_F(BrowserLoginTest, APageThatIsNotSecureIsNotOpened) {
    launch();
    for (const char *answer : {R"({"id":"a","url":"http://own.example/"})", R"({"id":"a","url":"file:///etc/passwd"})",
                               R"({"id":"a","url":"https:"})", R"({"id":1,"url":"https://own.example/"})", "{}"}) {
        start = answer;
        choose();
        EXPECT_EQ(notices.last(), u"Couldn't start signing in. Try again later."_s) << answer;
        notices.shown.clear();
    }
    EXPECT_TRUE(desktop.opened.isEmpty());
}

TEST_F(BrowserLoginTest, WhatAnotherSignInOvertookCountsNoMore) {
    launch();
    const auto answers = http.answer;
    http.answer = nullptr;
    choose();
    const auto overtake = [this] {
        item.press(Action::LoginDialog);
        alerts.answer(0, QStringList{u"ann"_s, u"pass"_s});
        answerOpen(u"/login"_s, json(R"({"agentToken":"new","agentId":"id"})"));
        scheduler.runDue();
    };
    overtake();
    answerOpen(u"/auth/start"_s, json(start));
    EXPECT_TRUE(desktop.opened.isEmpty());
    choose();
    answerOpen(u"/auth/start"_s, json(start));
    EXPECT_EQ(desktop.opened.size(), 1);
    scheduler.advance(1s);
    EXPECT_EQ(http.last.timeout, 3s);
    item.press(Action::LogoutDialog);
    alerts.answer(0);
    answerOpen(u"/e2ee/logout"_s, json("{}"));
    notices.shown.clear();
    answerOpen(u"/auth/status?id=a%2B%2Fb"_s, json(R"({"status":"done","user":"Bob"})"));
    EXPECT_TRUE(notices.shown.empty());
}

TEST_F(BrowserLoginTest, AnAgentThatNeverComesUpIsRestartedOnceAndGivenUp) {
    agentIsSilent();
    launch();
    services.calls.clear();
    choose();
    EXPECT_EQ(notices.last(), u"Starting…"_s);
    scheduler.advance(7s);
    choose(); // impatience starts nothing
    scheduler.advance(8s);
    EXPECT_EQ(notices.last(), u"Korvel couldn't start. Try again later."_s);
    EXPECT_EQ(services.calls.filter(u"enable"_s).size(), 1);
    EXPECT_TRUE(desktop.opened.isEmpty());
    choose();
    EXPECT_EQ(notices.last(), u"Starting…"_s); // a new sign-in
}

} // namespace
} // namespace korvel::test
