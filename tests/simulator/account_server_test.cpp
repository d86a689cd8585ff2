#include "home_fixture.h"
#include "tls_client.h"

#include "simulator/files.h"

#include <QFileInfo>
#include <QJsonDocument>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

class AccountServerTest : public HomeTest {
protected:
    AccountServerTest() { EXPECT_TRUE(home.startAccountServer()); }

    SecureExchange ask(const QByteArray &start, const QByteArray &fields = {}, const QByteArray &body = {}) {
        return askSecurely(home.accountServer(), home.authorityFile(), start, fields, body);
    }
    SecureExchange logIn(const QByteArray &password) {
        return ask("POST /v1/agents/login", "Content-Type: application/json\r\n",
                   R"({"username":"sam@example.com","password":")" + password + R"(","host":"Mini"})");
    }
    void setServer(const QJsonObject &section) { home.setScenario({{u"server"_s, section}}); }
    void setFault(const QJsonObject &fault) { setServer({{u"faults"_s, QJsonObject{{u"*"_s, fault}}}}); }
    static QJsonObject parsed(const SecureExchange &exchange) {
        return QJsonDocument::fromJson(exchange.body).object();
    }
};

} // namespace

TEST_F(AccountServerTest, GivesCredentialsForTheRightPasswordAndReleasesThem) {
    EXPECT_EQ(logIn("close sesame").status(), 401);
    EXPECT_TRUE(home.accounts().liveCredentials().isEmpty());

    const QJsonObject granted = parsed(logIn("open sesame"));
    ASSERT_EQ(home.accounts().liveCredentials().size(), 1);
    const Credential live = home.accounts().liveCredentials().first();
    EXPECT_EQ(granted, (QJsonObject{{u"agentToken"_s, live.token}, {u"agentId"_s, live.agentId}}));
    EXPECT_EQ(live.host, u"Mini"_s);

    const QByteArray bearer = "Authorization: Bearer " + live.token.toUtf8() + "\r\n";
    EXPECT_EQ(ask("POST /v1/agents/unbind", "Authorization: Bearer " + live.agentId.toUtf8() + "\r\n").status(), 401);
    EXPECT_EQ(ask("POST /v1/agents/unbind", bearer).status(), 200);
    EXPECT_EQ(ask("POST /v1/agents/unbind", bearer).status(), 401);
    EXPECT_TRUE(home.accounts().liveCredentials().isEmpty());

    EXPECT_FALSE(home.accounts().add(u"sam@example.com"_s, {}, u"x"_s)) << "in use";
    EXPECT_TRUE(home.accounts().add(u"kim"_s, {}, u"x"_s));
}

TEST_F(AccountServerTest, LogsRequestsWithoutPasswordsAndTokens) {
    logIn("open sesame");
    const Credential live = home.accounts().liveCredentials().value(0);
    ask("POST /v1/agents/unbind", "Authorization: Bearer " + live.token.toUtf8() + "\r\n");
    ask("GET /?a=b", "Authorization: Bearer guess\r\n", "password=open+sesame");
    const QList<QJsonObject> log = home.serverRequests();
    ASSERT_EQ(log.size(), 3);
    EXPECT_EQ(log[0].value("authorization"_L1), QJsonValue(u"absent"_s));
    EXPECT_EQ(log[0].value("host"_L1), QJsonValue(home.accountServer()));
    EXPECT_TRUE(log[0].value("body"_L1).toString().contains(u"\"password\":\"***\""));
    EXPECT_EQ(log[1].value("authorization"_L1), QJsonValue(live.agentId));
    EXPECT_EQ(log[2].value("authorization"_L1), QJsonValue(u"unknown"_s));
    EXPECT_EQ(log[2].value("path"_L1), QJsonValue(u"/?a=b"_s));
    for (const QJsonObject &line : log)
        EXPECT_FALSE(QJsonDocument(line).toJson().contains("sesame") ||
                     QJsonDocument(line).toJson().contains(live.token.toUtf8()));
}

TEST_F(AccountServerTest, CertificateIsGoodOrWrongAsTheScenarioSays) {
    struct Case {
        QString name;
        QSslError::SslError error;
    };
    for (const Case &each : {Case{u"expired"_s, QSslError::CertificateExpired},
                             Case{u"not-yet-valid"_s, QSslError::CertificateNotYetValid},
                             Case{u"unknown-authority"_s, QSslError::UnableToGetLocalIssuerCertificate},
                             Case{u"wrong-host"_s, QSslError::HostNameMismatch}}) {
        setServer({{u"certificate"_s, each.name}});
        EXPECT_TRUE(logIn("open sesame").refusals.contains(each.error)) << qPrintable(each.name);
    }
    setServer({});
    EXPECT_EQ(logIn("open sesame").status(), 200);
    EXPECT_EQ(home.accounts().liveCredentials().size(), 1) << "nothing is sent to a server that is not trusted";
    EXPECT_EQ(home.environment().value(u"SSL_CERT_FILE"_s), home.authorityFile());
    const QString key = QFileInfo(home.authorityFile()).path() + "/authority.key"_L1;
    EXPECT_EQ(QFileInfo(key).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(AccountServerTest, RefusesAndServesAgainAndEndsWithItsHome) {
    setServer({{u"refuse"_s, true}});
    EXPECT_FALSE(logIn("open sesame").connected);
    setServer({});
    EXPECT_EQ(logIn("open sesame").status(), 200);
    EXPECT_TRUE(home.startAccountServer()) << "it runs already";
    EXPECT_TRUE(home.stopAccountServer());
    EXPECT_FALSE(logIn("open sesame").connected);
    EXPECT_TRUE(home.startAccountServer());
    EXPECT_TRUE(home.shutDown());
    EXPECT_FALSE(logIn("open sesame").connected);
    EXPECT_TRUE(QFileInfo::exists(home.authorityFile())) << "another start is trusted too";
}

TEST_F(AccountServerTest, FaultsReachTheWireAndOnlyActingOnesGiveCredentials) {
    setFault({{u"mode"_s, u"redirect"_s}, {u"location"_s, u"https://localhost:1/x"_s}, {u"status"_s, 308}});
    EXPECT_TRUE(logIn("open sesame").head.contains(" 308 "));
    EXPECT_TRUE(logIn("open sesame").head.contains("\r\nLocation: https://localhost:1/x"));
    setFault({{u"mode"_s, u"answer"_s}, {u"status"_s, 503}, {u"body"_s, QJsonObject{{u"error"_s, u"later"_s}}}});
    EXPECT_EQ(parsed(logIn("open sesame")).value("error"_L1), QJsonValue(u"later"_s));
    setFault({{u"mode"_s, u"answer"_s}, {u"body"_s, u"plain"_s}, {u"type"_s, u"text/plain"_s}});
    EXPECT_EQ(logIn("open sesame").body, "plain");
    setFault({{u"mode"_s, u"huge"_s}, {u"bytes"_s, 3'000'000}});
    EXPECT_EQ(logIn("open sesame").body.size(), 3'000'000);
    EXPECT_TRUE(home.accounts().liveCredentials().isEmpty());
    setFault({{u"mode"_s, u"reset"_s}, {u"acts"_s, true}});
    EXPECT_TRUE(logIn("open sesame").head.isEmpty());
    EXPECT_EQ(home.accounts().liveCredentials().size(), 1) << "done, and only the answer lost";
}

} // namespace korvel::sim
