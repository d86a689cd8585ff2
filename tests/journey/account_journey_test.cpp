#include "journey/journey.h"
#include "support/tray_process.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslCertificate>
#include <QSslConfiguration>

namespace korvel::test {
namespace {

const QString ACCOUNT = u"sam@example.com"_s;

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
};

TEST_F(AccountJourney, ThePageOfTheInternationalEditionSignsIn) {
    becomeEdition(u"intl"_s);
    configure(u"server"_s, home.accountServer());
    launch();
    item.choose(Action::BrowserLogin); // no agent runs yet: it is started first
    ASSERT_TRUE(eventually([&] { return !desktop.opened.isEmpty(); }));
    const QByteArray next = submitForm(desktop.opened.first(), home.authorityFile(),
                                       "username=sam%40example.com&password=open+sesame&action=sign-in");
    ASSERT_TRUE(next.contains("id=\"closing\"")) << next.constData();
    ASSERT_TRUE(tells(u"● Signed in as "_s + ACCOUNT));
    ASSERT_TRUE(showsSoon(u"● Connected · "_s + ACCOUNT + u" · 0 sessions"_s));
    EXPECT_EQ(home.accounts().liveCredentials().size(), 1);
}

/// The tray program's own sign-in from the command line.
struct LoginSwitchJourney : AccountJourney {
    QByteArray output, errors;
    std::optional<QByteArray> exchange; ///< Lies in place of korvel-exchange; empty: no file does.

    int login(const QStringList &arguments, const QByteArray &input, const QString &language = u"en"_s) {
        TrayProcess tray(home, TrayProcess::Shown::Nowhere, language);
        QFile placed(QFileInfo(tray.placed).path() + u"/../Helpers/korvel-exchange"_s);
        if (exchange)
            placed.remove();
        if (exchange && !exchange->isEmpty() && placed.open(QIODevice::WriteOnly)) {
            placed.write(*exchange);
            placed.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
            placed.close();
        }
        const int status = tray.automate(QStringList{u"--login"_s} + arguments, input);
        output = tray.output;
        errors = tray.errors;
        EXPECT_FALSE(errors.contains("sesame"));
        return status;
    }
};

TEST_F(LoginSwitchJourney, SignsInOnceAndSaysHowItWent) {
    EXPECT_EQ(login({ACCOUNT, home.accountServer()}, "close sesame\n"), 1);
    EXPECT_EQ(output, "Incorrect account or password.\n");
    EXPECT_EQ(login({ACCOUNT, home.accountServer()}, "close sesame\n", u"zh_CN"_s), 1);
    EXPECT_EQ(output, "账号或密码不正确\n"_ba);
    EXPECT_EQ(login({ACCOUNT, u"https://"_s + home.accountServer() + u'/'}, "open sesame\r\nmore\n"), 0);
    EXPECT_EQ(output, "● Signed in as sam@example.com\n"_ba);
    EXPECT_TRUE(eventually([&] { return home.agentPid() != 0; }));
    // Without a fourth word: the server that is configured now. The first credential is released there.
    EXPECT_EQ(login({ACCOUNT}, "open sesame"), 0);
    ASSERT_EQ(home.accounts().liveCredentials().size(), 1);
    EXPECT_EQ(cfg().value(u"agentToken"), home.accounts().liveCredentials().first().token);
    EXPECT_EQ(login({ACCOUNT, u"no server"_s}, "open sesame"), 1);
    EXPECT_EQ(output, "The server address isn't valid.\n");
}

TEST_F(LoginSwitchJourney, WithoutAProgramForServersItSaysThatItCannotConnect) {
    for (const QByteArray &content : {""_ba, "no program"_ba, "#!/bin/sh\nhead -n 1; echo '{\"status\": 200}'\n"_ba,
                                      "#!/bin/sh\nread task; cat /dev/zero\n"_ba}) {
        exchange = content;
        EXPECT_EQ(login({ACCOUNT, home.accountServer()}, "open sesame\n"), 1);
        EXPECT_EQ(output, "Can't connect to the server. Try again later.\n");
        EXPECT_EQ(errors.count("[net] korvel-exchange"), 1) << errors.toStdString();
    }
}

} // namespace
} // namespace korvel::test
