#include "browser_sign_in_fixture.h"
#include "tls_client.h"

#include <QJsonDocument>
#include <QUrl>

namespace korvel::sim {

using namespace Qt::StringLiterals;

TEST_F(BrowserSignInTest, SigningInOnThePageBindsTheMac) {
    ASSERT_TRUE(home.startAccountServer());
    const QJsonObject started = start();
    const QUrl url(started.value("url"_L1).toString());
    EXPECT_EQ(u"localhost:%1"_s.arg(url.port()), home.accountServer());
    const QByteArray address = url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority);
    const auto ask = [&](const QByteArray &method, const QByteArray &form) {
        return askSecurely(home.accountServer(), home.authorityFile(), method + ' ' + address,
                           "Content-Type: application/x-www-form-urlencoded\r\n", form);
    };
    const SecureExchange page = ask("GET", {});
    EXPECT_TRUE(page.body.contains("Sam's &lt;Mini&gt;"));
    EXPECT_FALSE(page.body.contains("id=\"error\""));

    const SecureExchange refused = ask("POST", "username=sam%40example.com&password=x&action=sign-in");
    EXPECT_TRUE(refused.body.contains("id=\"error\"") && refused.body.contains("value=\"sam@example.com\""));
    EXPECT_EQ(statusOf(started), (QJsonObject{{u"status"_s, u"pending"_s}}));

    EXPECT_TRUE(ask("POST", "username=sam%40example.com&password=open+sesame&action=sign-in").body.contains("closing"));
    EXPECT_EQ(statusOf(started), (QJsonObject{{u"status"_s, u"done"_s}, {u"user"_s, u"sam@example.com"_s}}));
    ASSERT_EQ(home.accounts().liveCredentials().size(), 1);
    EXPECT_EQ(config().value("agentToken"_L1), QJsonValue(home.accounts().liveCredentials().first().token));
    EXPECT_TRUE(parsed(health()).value("online"_L1).toBool());
    EXPECT_EQ(ask("GET", {}).status(), 404) << "a link is good once";
    EXPECT_FALSE(QJsonDocument(home.serverRequests().last()).toJson().contains("sesame"));
}

TEST_F(BrowserSignInTest, BindsTheMacEvenWhenNobodyAsksForTheStatus) {
    start();
    EXPECT_TRUE(home.accounts().approveBrowser(u"sam@example.com"_s));
    EXPECT_TRUE(eventually([&] { return home.account() == "sam@example.com"_L1; }));
    EXPECT_FALSE(home.accounts().approveBrowser(u"kim"_s)) << "no longer pending";
}

TEST_F(BrowserSignInTest, EndsAsTheUserWantsAndAnswersAsTheScenarioSays) {
    const QJsonObject first = start();
    EXPECT_TRUE(home.accounts().failBrowser(u"Not here"_s));
    EXPECT_EQ(statusOf(first), (QJsonObject{{u"status"_s, u"failed"_s}, {u"error"_s, u"Not here"_s}}));
    const QJsonObject second = start();
    EXPECT_TRUE(home.accounts().cancelBrowser());
    EXPECT_EQ(statusNameOf(second), u"cancelled"_s);
    EXPECT_EQ(statusNameOf(first), u"failed"_s) << "each by its id";
    const QByteArray raw = "/auth/status?id=" + second.value("id"_L1).toString().toUtf8();
    EXPECT_FALSE(parsed(get(home.port(), raw, token())).contains("status"_L1)) << "an id that was not encoded";
    EXPECT_TRUE(get(home.port(), "/auth/status?id=x", {}).head.contains(" 401 "));

    home.changeScenario(
        {{u"browserSignIn"_s, QJsonObject{{u"start"_s, QJsonObject{{u"url"_s, u"http://localhost/"_s}, {u"id"_s, 7}}},
                                          {u"status"_s, QJsonObject{{u"status"_s, u"expired"_s}}}}}});
    EXPECT_EQ(start(), (QJsonObject{{u"id"_s, 7}, {u"url"_s, u"http://localhost/"_s}}));
    EXPECT_EQ(statusNameOf(second), u"expired"_s);
    EXPECT_TRUE(home.account().isEmpty());
}

} // namespace korvel::sim
