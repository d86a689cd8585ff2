#include "account/server_api.h"
#include "base/log.h"
#include "support/full_disk.h"
#include "support/tray_fixture.h"

#include <QFile>
#include <algorithm>

namespace korvel::test {
namespace {

TEST(ServerApi, AResponseIsJudgedByItsBodyAlone) {
    const QString failed = u"Couldn't sign in. Try again later."_s;
    const QString wrong = u"The server didn't respond correctly. Try again later."_s;
    const struct {
        int status;
        const char *body;
        QString sentence;
    } cases[] = {
        {200, R"({"error":"No such account."})", u"No such account."_s},
        {200, R"({"agentToken":"t","agentId":7})", failed},
        {200, R"({"agentToken":"t","agentId":7,"error":"Full."})", u"Full."_s},
        {200, R"({"error":5})", failed},
        {502, "<html>Bad gateway</html>", wrong},
        {200, "[1]", wrong},
        {200, "", wrong},
    };
    for (const auto &c : cases)
        EXPECT_EQ(parseLogin(HttpReply{c.status, c.body}).error().detail, c.sentence) << c.body;
    EXPECT_EQ(parseLogin(HttpReply{500, R"({"agentToken":"t","agentId":"i"})"}).value(), (Credential{u"t"_s, u"i"_s}));
    EXPECT_EQ(netErrorText(std::nullopt), u"Can't connect to the server. Check your network and try again."_s);
}

TEST(ServerApi, AComputerIsNamedWithoutItsDomainAndInAtMost32Characters) {
    EXPECT_EQ(computerDisplayName(u"Studio.local"_s), u"Studio"_s);
    EXPECT_EQ(computerDisplayName(QString(40, u'x')), QString(32, u'x'));
    EXPECT_EQ(computerDisplayName(QString(31, u'x') + u"👩‍💻y"_s), QString(31, u'x') + u"👩‍💻"_s);
    EXPECT_EQ(computerDisplayName(u"王的电脑"_s), u"王的电脑"_s);
}

struct AccountTest : TrayFixture {
    QStringList sent; ///< Requests to servers: "host/path", with the credential of a release.
    QByteArray loginReply = R"({"agentToken":"new","agentId":"id"})";
    std::optional<Error> loginError, unbindError;
    HttpRequest login;   ///< The last sign-in.
    QByteArray onUnbind; ///< The configuration at the moment of the last release.
    QStringList logged;

    void TearDown() override { setLogSink({}); }
    void SetUp() override {
        setLogSink([this](const QString &line) { logged.append(line); });
        http.answer = [this](const FakeHttp::Request &r) -> Result<HttpReply> {
            if (!r.isForServer)
                return json(ONLINE);
            const bool isLogin = r.url.endsWith(u"/login");
            QString line = r.url.mid(8);
            for (const auto &[name, value] : r.headers)
                if (name == "Authorization")
                    line += u' ' + QString::fromUtf8(value);
            sent.append(line);
            if (isLogin)
                login = r;
            else
                onUnbind = file();
            const auto &error = isLogin ? loginError : unbindError;
            return error ? Result<HttpReply>(*error) : json(isLogin ? loginReply : "{}");
        };
    }
    QByteArray file() const {
        QFile cfg(home.paths.agentCfg);
        return cfg.open(QIODevice::ReadOnly) ? cfg.readAll() : QByteArray();
    }
    QJsonObject cfg() const { return QJsonDocument::fromJson(file()).object(); }
    void beginSignIn(const QString &user = u"ann@example.com"_s) {
        item.press(Action::LoginDialog);
        alerts.answer(0, {user, u"pass"_s});
    }
    void beginSignOut() {
        item.press(Action::LogoutDialog);
        alerts.answer(0);
    }
    void signIn() {
        beginSignIn();
        scheduler.runDue();
    }
    void signOut() {
        beginSignOut();
        scheduler.runDue();
    }
};

TEST_F(AccountTest, APasswordSignInBindsThisMacAndKeepsWhatElseIsConfigured) {
    makeInternational();
    home.writeConfig(R"({"localToken":"secret","other":{"kept":1}})");
    launch();
    signIn();
    EXPECT_EQ(sent, QStringList{u"intl.example:443/v1/agents/login"_s});
    EXPECT_EQ(login.timeout, 25s);
    EXPECT_EQ(login.headers.first(), std::pair("Content-Type"_ba, "application/json"_ba));
    EXPECT_EQ(login.body, R"({"host":"Studio","password":"pass","username":"ann@example.com"})");
    EXPECT_EQ(cfg(), object(
                         R"({"agentToken":"new","agentId":"id","server":"intl.example:443","host":"Studio",
        "username":"ann@example.com","loginName":"ann@example.com","localToken":"secret","other":{"kept":1}})"));
    EXPECT_EQ(services.calls.filter(u"enable"_s).size(), 1); // the agent starts with it
    EXPECT_EQ(notices.last(), u"● Signed in as ann@example.com"_s);
    EXPECT_EQ(pairPanel.presented, 1);
}

TEST_F(AccountTest, AnOlderCredentialIsReleasedOnceWhereItIsHeldBeforeTheNewOneIsWritten) {
    makeInternational();
    // The mainland server belongs to another edition: not used for anything but this release.
    const QByteArray before = R"({"agentToken":"old","server":"cn.example"})";
    for (const bool fails : {false, true}) {
        home.writeConfig(before);
        sent.clear();
        unbindError = fails ? std::optional(Error{ErrorKind::TimedOut, {}}) : std::nullopt;
        if (!tray)
            launch();
        signIn();
        EXPECT_EQ(sent, (QStringList{u"intl.example:443/v1/agents/login"_s,
                                     u"cn.example:443/v1/agents/unbind Bearer old"_s}));
        EXPECT_EQ(onUnbind, before);
        EXPECT_EQ(cfg().value(u"agentToken"), u"new"_s);
    }
    sent.clear();
    signIn(); // the same credential again: nothing to release
    EXPECT_EQ(sent.size(), 1);
    home.writeConfig(R"({"agentToken":"old","server":"not a server"})");
    signIn();
    EXPECT_EQ(sent.last(), u"intl.example:443/v1/agents/unbind Bearer old"_s);
}

TEST_F(AccountTest, SettingsThatCannotBeSavedAreReportedOnceBeforeTheOldCredentialIsReleased) {
    makeInternational();
    const struct {
        QByteArray before;
        rlim_t room; ///< For a file, in bytes.
    } cases[] = {{R"({"agentToken":"old"})", 10},
                 {QByteArray(2 << 20, ' '), RLIM_INFINITY}}; // larger than the tray reads
    launch();
    for (const auto &c : cases) {
        home.writeConfig(c.before);
        sent.clear();
        logged.clear();
        {
            const FullDisk full(c.room);
            signIn();
        }
        EXPECT_EQ(sent,
                  (QStringList{u"intl.example:443/v1/agents/login"_s,
                               u"intl.example:443/v1/agents/unbind Bearer new"_s})); // given back, the old one kept
        EXPECT_EQ(file(), c.before);
        EXPECT_EQ(alerts.view.fromOutside,
                  u"Couldn't save the settings. Check disk space and permissions and try again."_s);
        EXPECT_EQ(logged, QStringList{u"[tray] "_s + home.paths.agentCfg + u": File too large"_s});
        alerts.dismiss();
    }
}

TEST_F(AccountTest, AFileThatTheAgentIsWritingIsReadAgainBeforeItCountsAsEmpty) {
    makeInternational();
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
        EXPECT_TRUE(sent.contains(u"own.example:443/v1/agents/unbind Bearer t"_s));
        EXPECT_EQ(cfg().value(u"localToken"), u"secret"_s);
        EXPECT_EQ(cfg().value(u"agentToken").toString(), signsIn ? u"new"_s : QString());
    }
    home.writeConfig(half); // and nobody writes the rest
    signOut();
    scheduler.advance(1s);
    EXPECT_EQ(notices.last(), u"⏻ Signed out"_s);
}

TEST_F(AccountTest, TheDialogComesBackWithWhatWasTypedAndWhatWentWrong) {
    makeInternational();
    launch();
    desktop.option = true;
    item.press(Action::LoginDialog);
    desktop.option = false; // only the moment of the opening counts
    ASSERT_EQ(alerts.view.fields.size(), 3);
    EXPECT_EQ(alerts.view.fields[2].text, u"intl.example:443"_s);
    alerts.answer(0, {u"ann"_s, u""_s, u"own.example"_s});
    EXPECT_EQ(alerts.by, OpenedBy::User);
    EXPECT_EQ(alerts.view.fromOutside, u"Enter your email and password."_s);
    EXPECT_EQ(alerts.view.fields[0].text, u"ann"_s);
    alerts.answer(0, {u"ann"_s, u"pass"_s, u"own example"_s});
    EXPECT_EQ(alerts.view.fromOutside, u"The server address isn't valid."_s);
    EXPECT_EQ(alerts.view.fields[2].text, u"own example"_s);
    EXPECT_TRUE(sent.isEmpty());
    loginReply = R"({"error":"Wrong\npassword. "})";
    alerts.answer(0, {u"ann"_s, u"pass"_s, u"https://own.example/"_s});
    EXPECT_EQ(sent, QStringList{u"own.example:443/v1/agents/login"_s});
    EXPECT_EQ(alerts.view.fromOutside, u"Wrong\npassword."_s);
    EXPECT_TRUE(alerts.view.warning);
    EXPECT_EQ(alerts.by, OpenedBy::Program); // the user may have turned to something else
    EXPECT_EQ(alerts.view.fields[1].text, u""_s);
    EXPECT_FALSE(notices.visible); // no longer "signing in"
    alerts.dismiss();
    EXPECT_FALSE(alerts.isOpen());
    EXPECT_EQ(file(), ""_ba);
    home.bind();
    item.press(Action::LoginDialog);
    EXPECT_EQ(alerts.view.title, u"Sign In to Korvel Again"_s);
    EXPECT_EQ(alerts.view.fields.size(), 2);
}

TEST_F(AccountTest, SigningOutReleasesTheCredentialAndClearsOnlyWhatBindsThisMac) {
    installAndBind();
    home.writeConfig(
        R"({"agentToken":"t","agentId":"i","username":"ann","loginName":"ann","server":"own.example",
                         "host":"Studio","localToken":"secret"})");
    launch();
    item.choose(Action::LogoutDialog);
    alerts.dismiss();
    EXPECT_TRUE(sent.isEmpty() && !services.calls.contains(u"bootout com.korvel.agent"_s));
    signOut();
    EXPECT_EQ(sent, QStringList{u"own.example:443/v1/agents/unbind Bearer t"_s});
    EXPECT_EQ(cfg().keys(), (QStringList{u"host"_s, u"localToken"_s, u"server"_s}));
    EXPECT_TRUE(services.calls.contains(u"bootout com.korvel.agent"_s));
    EXPECT_EQ(notices.last(), u"⏻ Signed out"_s);
    EXPECT_EQ(item.statusLine(), u"Not signed in"_s);
}

TEST_F(AccountTest, OnAFullDiskTheOldConfigurationStaysAndIsWhatIsShown) {
    installAndBind();
    const QByteArray before = file();
    launch();
    {
        const FullDisk full(10);
        signOut();
    }
    EXPECT_EQ(file(), before);
    EXPECT_EQ(notices.last(), u"Couldn't sign out. Try again later."_s);
    EXPECT_EQ(item.entry(Action::LogoutDialog).title, u"Sign Out…"_s);
}

TEST_F(AccountTest, NothingThatFailsOrHangsKeepsASignOutFromEnding) {
    installAndBind();
    launch();
    http.answer = nullptr; // the agent and the server never answer: the client reports that at its deadline
    beginSignOut();
    EXPECT_EQ(notices.last(), u"⏻ Signing out…"_s);
    item.choose(Action::LogoutDialog); // once is enough
    EXPECT_FALSE(alerts.isOpen());
    const auto timeOut = [this](const QString &path) { answerOpen(path, Error{ErrorKind::TimedOut, {}}); };
    EXPECT_EQ(http.last.timeout, 30s);
    timeOut(u"/e2ee/logout"_s);
    EXPECT_EQ(http.last.timeout, 15s);
    scheduler.holdBackground(true); // launchctl hangs too
    timeOut(u"/v1/agents/unbind"_s);
    scheduler.advance(10s);
    EXPECT_EQ(notices.last(), u"⏻ Signed out"_s);
    EXPECT_FALSE(cfg().contains(u"agentToken"));
    scheduler.holdBackground(false);
    notices.shown.clear();
    scheduler.runDue();
    EXPECT_TRUE(notices.shown.empty());
}

TEST_F(AccountTest, ASignInForgetsThatTheLastOneWasLost) {
    makeInternational();
    home.writeConfig(R"({"agentToken":"old","username":"bob","localToken":"secret"})");
    services.loaded = true;
    const auto servers = http.answer;
    http.answer = [&](const auto &r) { return r.isForServer ? servers(r) : json(SIGNED_OUT); };
    launch();
    ASSERT_TRUE(health().authDead);
    http.answer = nullptr; // a poll is asked before the sign-in and answered after it
    scheduler.advance(3s);
    beginSignIn(u"ann"_s);
    answerOpen(u"/login"_s, json(loginReply));
    answerOpen(u"/unbind"_s, json("{}"));
    scheduler.runDue();
    EXPECT_EQ(health().account, u"ann"_s);
    notices.shown.clear();
    answerOpen(u"/health"_s, json(SIGNED_OUT));
    EXPECT_FALSE(health().authDead || health().authDeadNotified);
    EXPECT_TRUE(notices.shown.empty());
}

/// Two things at a time, each request answered when the test says so.
struct AccountRaceTest : AccountTest {
    void SetUp() override {
        AccountTest::SetUp();
        makeInternational();
        installAndBind();
        launch();
        http.answer = nullptr;
    }
    void signedInAs(const QByteArray &token) {
        answerOpen(u"/login"_s, json(R"({"agentToken":")" + token + R"(","agentId":"i"})"));
    }
    /// Answers a release of `token` that is under way, after `skipped` others of them.
    void released(const QByteArray &token, int skipped = 0) {
        for (size_t i = 0; i < http.open.size(); ++i)
            if (http.open[i].request.headers.contains(std::pair("Authorization"_ba, "Bearer " + token)) &&
                skipped-- == 0)
                return http.reply(i, json("{}"));
        ADD_FAILURE() << "not released: " << token.constData();
    }
    QString token() const { return cfg().value(u"agentToken").toString(); }
};

TEST_F(AccountRaceTest, ASignOutWinsOverASignInWhereverThatIs) {
    enum Where { Asking, Releasing, Restarting };
    for (const Where where : {Asking, Releasing, Restarting}) {
        SCOPED_TRACE(where);
        home.bind();
        scheduler.holdBackground(true);
        beginSignIn(u"bob"_s);
        if (where >= Releasing)
            signedInAs("new");
        if (where == Restarting)
            released("t");
        beginSignOut();
        notices.shown.clear();
        if (where == Asking)
            signedInAs("new");
        if (where == Releasing)
            released("t");
        if (where != Restarting)
            released("new"); // given back
        EXPECT_EQ(token(), where == Restarting ? u"new"_s : u"t"_s);
        answerOpen(u"/e2ee/logout"_s, json("{}"));
        released(where == Restarting ? "new" : "t");
        scheduler.holdBackground(false);
        EXPECT_EQ(token(), u""_s);
        EXPECT_EQ(health().account, u""_s);
        EXPECT_EQ(std::ranges::count(notices.shown, u"● Signed in as bob"_s, &NoticeView::text), 0);
        EXPECT_EQ(notices.last(), u"⏻ Signed out"_s);
        alerts.dismiss();
        http.open.clear();
    }
}

TEST_F(AccountRaceTest, OfTwoSignInsTheNewerOneStaysAndTheOtherOneIsReleased) {
    for (const bool olderEndsFirst : {true, false}) {
        SCOPED_TRACE(olderEndsFirst);
        home.bind();
        beginSignIn(u"bob"_s);
        signedInAs("older");
        beginSignIn(u"kim"_s);
        signedInAs("newer"); // both wait for the release of the same credential
        released("t", olderEndsFirst ? 0 : 1);
        EXPECT_EQ(token(), olderEndsFirst ? u"older"_s : u"newer"_s);
        released("t");
        released("older");
        EXPECT_EQ(token(), u"newer"_s);
        scheduler.runDue();
        EXPECT_EQ(notices.last(), u"● Signed in as kim"_s);
        http.open.clear();
    }
}

TEST_F(AccountRaceTest, ACredentialThatAppearsDuringTheReleaseOfAnotherIsReleasedToo) {
    for (const bool signsOut : {true, false}) {
        home.bind();
        signsOut ? beginSignOut() : beginSignIn(u"bob"_s);
        signsOut ? answerOpen(u"/e2ee/logout"_s, json("{}")) : signedInAs("new");
        home.writeConfig(R"({"agentToken":"another","server":"own.example"})"); // the agent has signed this Mac in
        released("t");
        EXPECT_EQ(token(), u"another"_s);
        released("another");
        EXPECT_EQ(token(), signsOut ? u""_s : u"new"_s);
        scheduler.runDue();
    }
}

TEST_F(AccountTest, ASignOutAsksNoServerOfAnotherEditionAndForgetsWhatTheAgentSaid) {
    home.writeConfig(R"({"agentToken":"t","server":"intl.example","localToken":"secret"})");
    home.installJobFile();
    const auto servers = http.answer;
    http.answer = [&](const auto &r) {
        return r.isForServer ? servers(r) : json(R"({"ok":true,"authDead":true,"e2ee":{"state":"active"}})");
    };
    launch();
    const auto isEncrypted = [this] {
        return std::ranges::any_of(item.menu.entries, [](const MenuEntry &e) { return e.title.startsWith(u"🔒"); });
    };
    EXPECT_TRUE(isEncrypted());
    http.answer = [&](const auto &r) { return r.isForServer ? servers(r) : noAnswer(); };
    signOut();
    EXPECT_EQ(sent, QStringList{u"cn.example:443/v1/agents/unbind Bearer t"_s});
    EXPECT_FALSE(health().authDead);
    EXPECT_FALSE(isEncrypted());
}

} // namespace
} // namespace korvel::test
