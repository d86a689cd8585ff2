#include "journey/journey.h"

#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

const QString ACCOUNT = u"sam@example.com"_s;
const QString PASSWORD = u"open sesame"_s;

/// Fills in and submits the form of a sign-in page as a browser does; gives the page that follows.
QByteArray submitForm(const QString &url, const QString &authorityFile, const QByteArray &form) {
    QNetworkAccessManager browser;
    QNetworkRequest request((QUrl(url)));
    QSslConfiguration trust = QSslConfiguration::defaultConfiguration();
    trust.setCaCertificates(QSslCertificate::fromPath(authorityFile));
    request.setSslConfiguration(trust);
    const auto contentOf = [](QNetworkReply *reply) {
        EXPECT_TRUE(eventually([reply] { return reply->isFinished(); }));
        return reply->readAll();
    };
    const QByteArray page = contentOf(browser.get(request));
    for (const QByteArray control : {"name=\"username\"", "name=\"password\"", "name=\"action\" value=\"sign-in\""})
        EXPECT_TRUE(page.contains(control)) << page.constData();
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
    return contentOf(browser.post(request, form));
}

/// A Mac on which nobody is signed in, with its account server.
struct AccountJourney : Journey {
    void SetUp() override {
        ASSERT_TRUE(home.startAccountServer());
        ASSERT_TRUE(home.installJobFile());
    }
    bool tells(const QString &notice) {
        const bool told = eventually([&] { return notices.last() == notice; });
        EXPECT_EQ(notices.last(), notice);
        return told;
    }
    void signOut() {
        item.choose(Action::LogoutDialog);
        ASSERT_TRUE(alerts.isOpen());
        alerts.answer(0);
        ASSERT_TRUE(tells(u"⏻ Signed out"_s));
        ASSERT_TRUE(showsSoon(u"Not signed in"_s));
        EXPECT_EQ(home.agentPid(), 0);
        EXPECT_FALSE(cfg().contains(u"agentToken"));
        EXPECT_EQ(cfg().value(u"server"), home.accountServer());
    }
    void expectPairing() {
        ASSERT_TRUE(eventually([&] { return pairPanel.visible; }));
        ASSERT_TRUE(home.encryption().phoneSignIn());
        ASSERT_TRUE(eventually([&] { return pairPanel.view.refreshVisible; }));
        EXPECT_EQ(pairPanel.view.code, home.encryption().pairCode());
        ASSERT_TRUE(home.encryption().typeRight());
        ASSERT_TRUE(eventually([&] { return !pairPanel.visible; }));
    }
    int unbindings() const { return serverRequestsTo(u"/v1/agents/unbind"_s); }
};

TEST_F(AccountJourney, TheWholeRoadFromSignedOutToPairedAndBack) {
    home.setScenario({{u"e2ee"_s, QJsonObject{{u"start"_s, u"waiting"_s}}}});
    launch();
    ASSERT_TRUE(showsSoon(u"Not signed in"_s));
    item.choose(Action::BrowserLogin);
    ASSERT_TRUE(loginPanel.visible);
    loginPanel.does(LoginInput::Kind::Account, ACCOUNT);
    loginPanel.does(LoginInput::Kind::Password, u"close sesame"_s);
    loginPanel.does(LoginInput::Kind::Submit);
    ASSERT_TRUE(eventually([&] { return !loginPanel.view.error.isEmpty(); }));
    EXPECT_TRUE(loginPanel.visible);
    loginPanel.does(LoginInput::Kind::Password, PASSWORD);
    loginPanel.does(LoginInput::Kind::Submit);
    ASSERT_TRUE(tells(u"● Signed in as "_s + ACCOUNT));
    EXPECT_FALSE(loginPanel.visible);
    expectPairing();
    ASSERT_TRUE(showsSoon(u"● Connected · "_s + ACCOUNT + u" · 0 sessions"_s));
    ASSERT_EQ(home.accounts().liveCredentials().size(), 1);
    signOut();
    EXPECT_TRUE(home.accounts().liveCredentials().isEmpty());
    for (const QJsonObject &call : home.agentCalls())
        EXPECT_FALSE(QJsonDocument(call).toJson().contains("sesame"));
}

TEST_F(AccountJourney, ThroughTheBrowserOfTheInternationalEdition) {
    becomeEdition(u"intl"_s);
    home.setScenario({{u"e2ee"_s, QJsonObject{{u"start"_s, u"waiting"_s}}}});
    configure(u"server"_s, home.accountServer());
    launch();
    ASSERT_TRUE(showsSoon(u"Not signed in"_s));
    item.choose(Action::BrowserLogin); // no agent runs yet: it is started first
    ASSERT_TRUE(eventually([&] { return !desktop.opened.isEmpty(); }));
    const QByteArray next = submitForm(desktop.opened.first(), home.authorityFile(),
                                       "username=sam%40example.com&password=open+sesame&action=sign-in");
    ASSERT_TRUE(next.contains("id=\"closing\"")) << next.constData();
    ASSERT_TRUE(tells(u"● Signed in as "_s + ACCOUNT));
    expectPairing();
    signOut();
    EXPECT_TRUE(home.accounts().liveCredentials().isEmpty());
}

struct PasswordJourney : AccountJourney {
    void SetUp() override {
        AccountJourney::SetUp();
        becomeEdition(u"intl"_s);
        ASSERT_TRUE(home.accounts().add(u"kim"_s, {}, u"kim's"_s));
    }
    void signIn(const QString &account, const QString &password) {
        desktop.option = true;
        item.press(Action::LoginDialog);
        desktop.option = false;
        ASSERT_TRUE(alerts.isOpen());
        alerts.answer(0, QStringList{account, password, home.accountServer()});
    }
};

TEST_F(PasswordJourney, AtMostOneCredentialIsGoodWhateverHappensToTheOldOne) {
    configure(u"other"_s, u"kept"_s);
    launch();
    signIn(ACCOUNT, u"wrong"_s);
    ASSERT_TRUE(eventually([&] { return alerts.isOpen(); }));
    EXPECT_EQ(alerts.view.fromOutside, u"Incorrect account or password."_s);
    alerts.dismiss();
    signIn(ACCOUNT, PASSWORD);
    ASSERT_TRUE(tells(u"● Signed in as "_s + ACCOUNT));
    ASSERT_TRUE(showsSoon(u"● Connected · "_s + ACCOUNT + u" · 0 sessions"_s));

    signIn(u"kim"_s, u"kim's"_s);
    ASSERT_TRUE(tells(u"● Signed in as kim"_s));
    ASSERT_EQ(home.accounts().liveCredentials().size(), 1);
    EXPECT_EQ(home.accounts().liveCredentials().first().token, cfg().value(u"agentToken").toString());
    EXPECT_EQ(unbindings(), 1);

    // A server that drops the release: the new sign-in is kept all the same, and nothing is sent twice.
    home.changeScenario(
        {{u"server"_s,
          QJsonObject{{u"faults"_s, QJsonObject{{u"/v1/agents/unbind"_s, QJsonObject{{u"mode"_s, u"reset"_s}}}}}}}});
    signIn(ACCOUNT, PASSWORD);
    ASSERT_TRUE(tells(u"● Signed in as "_s + ACCOUNT));
    EXPECT_EQ(unbindings(), 2);
    EXPECT_EQ(cfg().value(u"username"), ACCOUNT);
    EXPECT_EQ(cfg().value(u"other"), u"kept"_s);
    ASSERT_TRUE(showsSoon(u"● Connected · "_s + ACCOUNT + u" · 0 sessions"_s));
}

TEST_F(PasswordJourney, ASignOutNeedsNeitherTheAgentNorTheServer) {
    launch();
    signIn(ACCOUNT, PASSWORD);
    ASSERT_TRUE(showsSoon(u"● Connected · "_s + ACCOUNT + u" · 0 sessions"_s));
    home.changeScenario(
        {{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 30000}}}, {u"server"_s, QJsonObject{{u"refuse"_s, true}}}});
    ASSERT_TRUE(home.killAgent(SIGKILL));
    signOut();
    EXPECT_EQ(home.accounts().liveCredentials().size(), 1); // the server could not be told
}

/// The tray program's own sign-in from the command line.
struct LoginSwitchJourney : AccountJourney {
    QByteArray output, errors;
    std::optional<QByteArray> exchange; ///< Lies in place of korvel-exchange; empty: no file does.

    int login(const QStringList &arguments, const QByteArray &input, const QString &language = u"en"_s) {
        QProcess process;
        QProcessEnvironment env = home.environment();
        for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
            env.remove(name);
        env.insert(u"KORVEL_TRAY_AUTOMATION"_s, u"1"_s);
        env.insert(u"LANGUAGE"_s, language);
        process.setProcessEnvironment(env);
        const QString program = home.assembleBundle(trayProgram());
        QFile placed(QFileInfo(program).path() + u"/../Helpers/korvel-exchange"_s);
        if (exchange)
            placed.remove();
        if (exchange && !exchange->isEmpty() && placed.open(QIODevice::WriteOnly)) {
            placed.write(*exchange);
            placed.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
            placed.close();
        }
        process.start(program, QStringList{u"--login"_s} + arguments);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(30000));
        output = process.readAllStandardOutput();
        errors = process.readAllStandardError();
        return process.exitCode();
    }
};

TEST_F(LoginSwitchJourney, SignsInOnceAndSaysHowItWent) {
    EXPECT_EQ(login({ACCOUNT, home.accountServer()}, "close sesame\n"), 1);
    EXPECT_EQ(output, "Incorrect account or password.\n");
    EXPECT_EQ(login({ACCOUNT, home.accountServer()}, "close sesame\n", u"zh_CN"_s), 1);
    EXPECT_EQ(output, "账号或密码不正确\n"_ba);
    EXPECT_EQ(login({ACCOUNT, u"https://"_s + home.accountServer() + u'/'}, "open sesame\r\nmore\n"), 0);
    EXPECT_EQ(output, "● Signed in as sam@example.com\n"_ba);
    EXPECT_FALSE(errors.contains("sesame"));
    ASSERT_EQ(home.accounts().liveCredentials().size(), 1);
    EXPECT_EQ(cfg().value(u"agentToken"), home.accounts().liveCredentials().first().token);
    EXPECT_TRUE(eventually([&] { return home.agentPid() != 0; }));
    // Without a fourth word: the server that is configured now.
    EXPECT_EQ(login({ACCOUNT}, "open sesame"), 0);
    EXPECT_EQ(login({ACCOUNT, u"no server"_s}, "open sesame"), 1);
    EXPECT_EQ(output, "The server address isn't valid.\n");
    home.changeScenario({{u"server"_s, QJsonObject{{u"certificate"_s, u"unknown-authority"_s}}}});
    EXPECT_EQ(login({ACCOUNT}, "open sesame"), 1);
    EXPECT_EQ(output, "Can't establish a secure connection. Try another network.\n");
}

TEST_F(LoginSwitchJourney, WithoutAProgramForServersItSaysThatItCannotConnect) {
    for (const QByteArray &content : {""_ba, "no program"_ba, "#!/bin/sh\nhead -n 1; echo '{\"status\": 200}'\n"_ba,
                                      "#!/bin/sh\nread task; cat /dev/zero\n"_ba}) {
        exchange = content;
        EXPECT_EQ(login({ACCOUNT, home.accountServer()}, "open sesame\n"), 1);
        EXPECT_EQ(output, "Can't connect to the server. Try again later.\n");
        EXPECT_EQ(errors.count("[net] korvel-exchange"), 1) << errors.toStdString();
        EXPECT_FALSE(errors.contains("sesame"));
    }
}

} // namespace
} // namespace korvel::test
