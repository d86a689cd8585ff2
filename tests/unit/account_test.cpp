#include "account/server_api.h"
#include "support/full_disk.h"
#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

TEST(ServerApi, AResponseIsJudgedByItsBodyAlone) {
    const QString failed = u"Couldn't sign in. Try again later."_s;
    const QString wrong = u"The server didn't respond correctly. Try again later."_s;
    const std::pair<HttpReply, QString> cases[] = {
        {{200, R"({"error":"No such account."})"}, u"No such account."_s},
        {{200, R"({"agentToken":"t","agentId":7})"}, failed},
        {{200, R"({"agentToken":"t","agentId":7,"error":"Full."})"}, u"Full."_s},
        {{200, R"({"error":5})"}, failed},
        {{502, "<html>Bad gateway</html>"}, wrong},
        {{200, "[1]"}, wrong},
    };
    for (const auto &[reply, sentence] : cases)
        EXPECT_EQ(parseLogin(reply).error().detail, sentence) << reply.body.constData();
    EXPECT_EQ(parseLogin(HttpReply{500, R"({"agentToken":"t","agentId":"i"})"}).value(), (Credential{u"t"_s, u"i"_s}));
    EXPECT_EQ(netErrorText(std::nullopt), u"Can't connect to the server. Check your network and try again."_s);
    // The name of a computer goes without its domain and in at most 32 characters.
    EXPECT_EQ(computerDisplayName(QString(40, u'x')), QString(32, u'x'));
    EXPECT_EQ(computerDisplayName(QString(31, u'x') + u"👩‍💻y"_s), QString(31, u'x') + u"👩‍💻"_s);
    EXPECT_EQ(computerDisplayName(QString(30, u'x') + u"ਊ😀y"_s), QString(30, u'x') + u"ਊ😀"_s);
    EXPECT_EQ(computerDisplayName(u"王的电脑.local"_s), u"王的电脑"_s);
}

struct AccountTest : TrayFixture {
    QByteArray agent = ONLINE; ///< The agent's response to all requests.
    QByteArray loginReply = R"({"agentToken":"new","agentId":"id"})";
    bool unbindFails = false;
    QStringList sent;    ///< Requests to servers: operation, server and credential.
    HttpRequest login;   ///< The last sign-in.
    QByteArray onUnbind; ///< The configuration at the moment of the last release.

    void SetUp() override {
        makeInternational();
        http.respond = [this](const HttpRequest &r) {
            return r.url.startsWith(u"https:") ? serverResponse(r) : agent.isEmpty() ? noResponse() : json(agent);
        };
    }
    Result<HttpReply> serverResponse(const HttpRequest &r) {
        sent.append(r.url.section(u'/', -1) + u' ' + r.url.section(u'/', 2, 2));
        if (r.url.endsWith(u"/login")) {
            login = r;
            return json(loginReply);
        }
        sent.last() += QString::fromUtf8(r.headers.value(0).second).remove(u"Bearer"_s);
        onUnbind = file();
        return unbindFails ? Error{ErrorKind::TimedOut, {}} : json("{}");
    }
    QByteArray file() const { return home.read(home.paths.agentCfg); }
    QJsonObject cfg() const { return object(file()); }
    QString token() const { return cfg().value(u"agentToken").toString(); }
    void signIn(const QString &user = u"ann@example.com"_s) {
        item.press(Action::LoginDialog);
        alerts.answer(0, {user, u"pass"_s});
        scheduler.runDue();
    }
    void signOut() {
        item.press(Action::LogoutDialog);
        alerts.answer(0);
        scheduler.runDue();
    }
};

TEST_F(AccountTest, APasswordSignInBindsThisMacAndKeepsTheOtherSettings) {
    home.writeConfig(R"({"localToken":"secret","other":{"kept":1}})");
    launch();
    signIn();
    EXPECT_EQ(sent, QStringList{u"login intl.example:443"_s});
    EXPECT_EQ(login.timeout, 25s);
    EXPECT_EQ(login.headers.first(), std::pair("Content-Type"_ba, "application/json"_ba));
    EXPECT_EQ(login.body, R"({"host":"Studio","password":"pass","username":"ann@example.com"})");
    EXPECT_EQ(cfg(), object(R"({"agentToken":"new","agentId":"id","server":"intl.example:443","host":"Studio",
        "username":"ann@example.com","loginName":"ann@example.com","localToken":"secret","other":{"kept":1}})"));
    EXPECT_EQ(services.operations(), u"enable bootstrap"_s); // the agent starts with it
    EXPECT_EQ(notices.last(), u"● Signed in as ann@example.com"_s);
    EXPECT_EQ(pairPanel.presented, 1);
}

TEST_F(AccountTest, AnOlderCredentialIsReleasedOnceByItsServerBeforeTheNewOneIsWritten) {
    launch();
    // Another edition's server is used for nothing but this release.
    const QByteArray before = R"({"agentToken":"old","server":"cn.example"})";
    for (const bool fails : {false, true}) {
        home.writeConfig(before);
        sent.clear();
        unbindFails = fails;
        signIn();
        EXPECT_EQ(sent, (QStringList{u"login intl.example:443"_s, u"unbind cn.example:443 old"_s}));
        EXPECT_EQ(onUnbind, before);
        EXPECT_EQ(token(), u"new"_s);
    }
    sent.clear();
    services.calls.clear();
    signIn(); // the same credential again: nothing to release
    EXPECT_EQ(sent.size(), 1);
    EXPECT_EQ(services.operations(), u"enable bootstrap kickstart"_s); // a running agent restarts
    EXPECT_EQ(health().startingUntil, scheduler.now() + 25s);
    home.writeConfig(R"({"agentToken":"old","server":"not a server"})");
    signIn();
    EXPECT_EQ(sent.last(), u"unbind intl.example:443 old"_s);
}

TEST_F(AccountTest, SettingsThatCannotBeSavedAreReportedOnceAndTheOldOnesStay) {
    home.bind();
    launch();
    const std::pair<QByteArray, rlim_t> cases[] = {
        {R"({"agentToken":"old"})", 10}, {QByteArray(2 << 20, ' '), RLIM_INFINITY}}; // larger than the tray reads
    for (const auto &[before, room] : cases) {
        home.writeConfig(before);
        sent.clear();
        const FullDisk full(room);
        signIn();
        EXPECT_EQ(sent, (QStringList{u"login intl.example:443"_s, u"unbind intl.example:443 new"_s}));
        EXPECT_EQ(file(), before);
        EXPECT_EQ(alerts.view.fromOutside,
                  u"Couldn't save the settings. Check disk space and permissions and try again."_s);
        alerts.dismiss();
    }
    home.bind();
    const FullDisk full(10);
    signOut();
    EXPECT_EQ(token(), u"t"_s);
    EXPECT_EQ(notices.last(), u"Couldn't sign out. Try again later."_s);
    EXPECT_EQ(item.entry(Action::LogoutDialog).title, u"Sign Out…"_s);
}

TEST_F(AccountTest, AFileThatTheAgentIsWritingIsReadAgainBeforeItCountsAsEmpty) {
    const QByteArray whole = R"({"agentToken":"t","server":"own.example","localToken":"secret"})";
    const QByteArray half = whole.first(20);
    home.writeConfig(whole);
    launch();
    for (const bool signsIn : {false, true}) {
        home.writeConfig(half);
        sent.clear();
        signsIn ? signIn() : signOut();
        scheduler.advance(100ms);
        EXPECT_EQ(file(), half);
        home.writeConfig(whole);
        scheduler.advance(100ms);
        EXPECT_TRUE(sent.contains(u"unbind own.example:443 t"_s));
        EXPECT_EQ(cfg().value(u"localToken"), u"secret"_s);
        EXPECT_EQ(token(), signsIn ? u"new"_s : QString());
    }
    home.writeConfig(half); // and the rest never comes
    signOut();
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(), u"⏻ Signed out"_s);
}

TEST_F(AccountTest, TheDialogComesBackWithTheInputAndTheError) {
    launch();
    desktop.option = true;
    item.press(Action::LoginDialog);
    desktop.option = false; // the key counts only when the dialog opens
    ASSERT_EQ(alerts.view.fields.size(), 3);
    EXPECT_EQ(alerts.view.fields[2].text, u"intl.example:443"_s);
    alerts.answer(0, {u"ann"_s, u""_s, u"own.example"_s});
    EXPECT_EQ(alerts.by, OpenedBy::User);
    EXPECT_EQ(alerts.view.fromOutside, u"Enter your email and password."_s);
    EXPECT_EQ(alerts.view.fields[0].text, u"ann"_s);
    alerts.answer(0, {u"ann"_s, u"pass"_s, u"own example"_s});
    EXPECT_EQ(alerts.view.fromOutside, u"The server address isn't valid."_s);
    EXPECT_TRUE(sent.isEmpty());
    loginReply = R"({"error":"Wrong\npassword. "})";
    alerts.answer(0, {u"ann"_s, u"pass"_s, u"https://own.example/"_s});
    EXPECT_EQ(sent, QStringList{u"login own.example:443"_s});
    EXPECT_EQ(alerts.view.fromOutside, u"Wrong\npassword."_s);
    EXPECT_TRUE(alerts.view.warning);
    EXPECT_EQ(alerts.by, OpenedBy::Program); // the user may be typing elsewhere
    EXPECT_EQ(alerts.view.fields[1].text, u""_s);
    EXPECT_FALSE(notices.visible); // no longer "signing in"
    alerts.dismiss();
    EXPECT_EQ(file(), ""_ba);
    home.bind();
    item.press(Action::LoginDialog);
    EXPECT_EQ(alerts.view.title, u"Sign In to Korvel Again"_s);
    EXPECT_EQ(alerts.view.fields.size(), 2);
}

TEST_F(AccountTest, SigningOutReleasesTheCredentialAndForgetsWhatBelongsToTheAccount) {
    installAndBind();
    home.writeConfig(R"({"agentToken":"t","agentId":"i","username":"ann","loginName":"ann","server":"cn.example",
                         "host":"Studio","localToken":"secret"})"); // another edition's server is not used
    agent = R"({"ok":true,"authDead":true,"e2ee":{"state":"active"}})";
    launch();
    EXPECT_FALSE(tray->currentState().e2ee.e2.isEmpty());
    item.choose(Action::LogoutDialog);
    alerts.dismiss();
    EXPECT_TRUE(sent.isEmpty() && !services.calls.contains(u"bootout com.korvel.agent"_s));
    agent.clear();
    signOut();
    EXPECT_EQ(sent, QStringList{u"unbind intl.example:443 t"_s});
    EXPECT_EQ(cfg().keys(), (QStringList{u"host"_s, u"localToken"_s, u"server"_s}));
    EXPECT_TRUE(services.calls.contains(u"bootout com.korvel.agent"_s));
    EXPECT_EQ(notices.last(), u"⏻ Signed out"_s);
    EXPECT_EQ(item.statusLine(), u"Not signed in"_s);
    EXPECT_FALSE(health().authDead);
    EXPECT_TRUE(tray->currentState().e2ee.e2.isEmpty());
}

TEST_F(AccountTest, NoFailureAndNoSilenceKeepsASignOutFromEnding) {
    installAndBind();
    launch();
    forget();
    http.respond = nullptr;
    signOut();
    EXPECT_EQ(notices.take(), u"⏻ Signing out…"_s);
    item.choose(Action::LogoutDialog); // once is enough
    EXPECT_FALSE(alerts.isOpen());
    EXPECT_EQ(http.last.timeout, 30s);
    complete(u"/e2ee/logout"_s, Error{ErrorKind::TimedOut, {}});
    EXPECT_EQ(http.last.timeout, 15s);
    scheduler.holdsBackground = true; // launchctl hangs too
    complete(u"/v1/agents/unbind"_s, Error{ErrorKind::TimedOut, {}});
    scheduler.advance(10s);
    EXPECT_EQ(notices.take(), u"⏻ Signed out"_s);
    EXPECT_EQ(token(), u""_s);
    scheduler.releaseBackground();
    EXPECT_EQ(notices.take(), u""_s);
}

/// Two operations at a time; the test completes each request.
struct AccountRaceTest : AccountTest {
    void SetUp() override {
        AccountTest::SetUp();
        installAndBind();
        launch();
        http.respond = nullptr;
    }
    void signedInAs(const QByteArray &token) {
        complete(u"/login"_s, json(R"({"agentToken":")" + token + R"(","agentId":"i"})"));
    }
    /// Completes a release of `token` that is in flight, after `skipped` others of it.
    void released(const QByteArray &token, int skipped = 0) {
        for (size_t i = 0; i < http.inFlight.size(); ++i)
            if (http.inFlight[i].request.headers.contains(std::pair("Authorization"_ba, "Bearer " + token)) &&
                skipped-- == 0)
                return http.complete(i, json("{}"));
        ADD_FAILURE() << "not released: " << token.constData();
    }
};

TEST_F(AccountRaceTest, ASignOutWinsOverASignInAtAnyStage) {
    enum Stage { Sending, Releasing, Restarting };
    for (const Stage stage : {Sending, Releasing, Restarting}) {
        SCOPED_TRACE(stage);
        home.bind();
        scheduler.holdsBackground = true;
        signIn(u"bob"_s);
        if (stage >= Releasing)
            signedInAs("new");
        if (stage == Restarting)
            released("t");
        notices.take();
        signOut();
        if (stage == Sending)
            signedInAs("new");
        if (stage == Releasing)
            released("t");
        if (stage != Restarting)
            released("new"); // given back
        EXPECT_EQ(token(), stage == Restarting ? u"new"_s : u"t"_s);
        complete(u"/e2ee/logout"_s, json("{}"));
        released(stage == Restarting ? "new" : "t");
        scheduler.releaseBackground();
        EXPECT_EQ(token(), u""_s);
        EXPECT_EQ(health().account, u""_s);
        EXPECT_EQ(notices.take(), u"⏻ Signing out… | ⏻ Signed out"_s);
        alerts.dismiss();
        http.inFlight.clear();
    }
}

TEST_F(AccountRaceTest, ASignInForgetsThatTheLastOneWasLost) {
    nextPoll(SIGNED_OUT);
    ASSERT_TRUE(health().authDead);
    http.respond = nullptr;
    scheduler.advance(3s); // sends a poll whose response comes after the sign-in
    signIn();
    signedInAs("new");
    released("t");
    EXPECT_FALSE(health().authDead || health().authDeadNotified);
    complete(u"/health"_s, json(SIGNED_OUT));
    EXPECT_FALSE(health().authDead);
    EXPECT_EQ(notices.last(), u"Signing in…"_s);
}

TEST_F(AccountRaceTest, OfTwoSignInsTheNewerOneStaysAndTheOtherOneIsReleased) {
    for (const bool olderEndsFirst : {true, false}) {
        SCOPED_TRACE(olderEndsFirst);
        home.bind();
        signIn(u"bob"_s);
        signedInAs("older");
        signIn(u"kim"_s);
        signedInAs("newer"); // both wait for the release of the same credential
        released("t", olderEndsFirst ? 0 : 1);
        EXPECT_EQ(token(), olderEndsFirst ? u"older"_s : u"newer"_s);
        released("t");
        released("older");
        EXPECT_EQ(token(), u"newer"_s);
        scheduler.runDue();
        EXPECT_EQ(notices.last(), u"● Signed in as kim"_s);
        http.inFlight.clear();
    }
}

TEST_F(AccountRaceTest, ACredentialThatAppearsDuringTheReleaseOfAnotherIsReleasedToo) {
    for (const bool signsOut : {true, false}) {
        home.bind();
        signsOut ? signOut() : signIn(u"bob"_s);
        signsOut ? complete(u"/e2ee/logout"_s, json("{}")) : signedInAs("new");
        home.writeConfig(R"({"agentToken":"another","server":"own.example"})"); // the agent has signed this Mac in
        released("t");
        EXPECT_EQ(token(), u"another"_s);
        released("another");
        EXPECT_EQ(token(), signsOut ? u""_s : u"new"_s);
        scheduler.runDue();
    }
}

} // namespace
} // namespace korvel::test
