#include "account/net_error.h"
#include "account/server_api.h"
#include "journey/journey.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <atomic>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// A sign-in at the simulated account server through the tray's own client, down to the sentence.
struct ServerJourney : Journey {
    std::atomic<bool> offline = false;
    QString proxy;
    Network network{.isOffline = [this] { return offline.load(); },
                    .proxyFor = [this](const QString &) { return proxy; },
                    .authorities = home.authorityFile()};
    QString server;
    QString otherUrl; ///< Instead of the one that the server's address makes.

    void SetUp() override {
        ASSERT_TRUE(home.startAccountServer());
        server = home.accountServer();
    }
    QString signIn(std::chrono::milliseconds limit = std::chrono::seconds(10), std::chrono::milliseconds idle = {}) {
        CurlHttpClient client(scheduler, network);
        auto request = buildLogin(server, u"sam@example.com"_s, u"open sesame"_s, u"Mini"_s);
        EXPECT_TRUE(request);
        if (!otherUrl.isEmpty())
            request->url = otherUrl;
        request->timeout = limit;
        request->idleTimeout = idle;
        std::optional<QString> sentence;
        client.send(*request, Done<HttpReply>([&](const Result<HttpReply> &reply) {
            const auto answer = parseLogin(reply);
            const auto *refusal = std::get_if<QString>(&answer);
            sentence = refusal ? *refusal : u"signed in"_s;
        }));
        EXPECT_TRUE(eventually([&] { return sentence.has_value(); }));
        return sentence.value_or(QString());
    }
    void setServer(const QJsonObject &section) { ASSERT_TRUE(home.setScenario({{u"server"_s, section}})); }
    void setFault(const QJsonObject &fault) { setServer({{u"faults"_s, QJsonObject{{u"*"_s, fault}}}}); }
};

TEST_F(ServerJourney, EveryFailureOnTheWayHasItsSentenceInBothLanguages) {
    const std::pair<QString, QString> offlineText{u"This Mac is offline. Connect to the internet and try again."_s,
                                                  u"这台 Mac 未连接网络，请连接后重试"_s};
    const std::pair<QString, QString> timedOut{u"The server timed out. Try again later."_s,
                                               u"服务器响应超时，请稍后重试"_s};
    const std::pair<QString, QString> insecure{u"Can't establish a secure connection. Try another network."_s,
                                               u"无法建立安全连接，请更换网络后重试"_s};
    const std::pair<QString, QString> noConnection{u"Can't connect to the server. Try again later."_s,
                                                   u"无法连接服务器，请稍后重试"_s};
    const std::pair<QString, QString> noSense{u"The server didn't respond correctly. Try again later."_s,
                                              u"服务器未正常响应，请稍后重试"_s};
    const auto fault = [](const QJsonObject &f) { return QJsonObject{{u"faults"_s, QJsonObject{{u"*"_s, f}}}}; };
    const auto certificate = [](const QString &kind) { return QJsonObject{{u"certificate"_s, kind}}; };
    const struct {
        QJsonObject server;
        std::pair<QString, QString> sentence;
    } cases[] = {
        {{}, {u"signed in"_s, u"signed in"_s}},
        {{{u"refuse"_s, true}}, noConnection},
        {fault({{u"mode"_s, u"reset"_s}}), offlineText},
        {fault({{u"mode"_s, u"close"_s}}), offlineText},
        {fault({{u"mode"_s, u"truncate"_s}}), offlineText},
        {fault({{u"mode"_s, u"silent"_s}}), timedOut},
        {fault({{u"mode"_s, u"drip"_s}, {u"ms"_s, 20}}), timedOut},
        {certificate(u"expired"_s), insecure},
        {certificate(u"not-yet-valid"_s), insecure},
        {certificate(u"unknown-authority"_s), insecure},
        {certificate(u"wrong-host"_s), insecure},
        {fault({{u"mode"_s, u"html"_s}}), noSense},
        {fault({{u"mode"_s, u"not-http"_s}}), noConnection},
        {fault({{u"mode"_s, u"huge"_s}, {u"bytes"_s, 3'000'000}}), noConnection},
        {fault({{u"mode"_s, u"answer"_s}, {u"status"_s, 500}, {u"body"_s, QJsonObject{{u"error"_s, u"维护中"_s}}}}),
         {u"维护中"_s, u"维护中"_s}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(QJsonDocument(c.server).toJson().toStdString());
        setServer(c.server);
        const bool late = c.sentence == timedOut;
        for (const bool chinese : {false, true}) {
            const LanguageScope language(chinese);
            EXPECT_EQ(signIn(std::chrono::milliseconds(late ? 300 : 10000)),
                      chinese ? c.sentence.second : c.sentence.first);
        }
    }
}

TEST_F(ServerJourney, OnlyAMacWithoutNetworkIsCalledOffline) {
    const QString offlineText = u"This Mac is offline. Connect to the internet and try again."_s;
    // A label longer than DNS allows is unknown without asking anybody.
    otherUrl = u"https://"_s + QString(64, u'x') + u".example/"_s;
    EXPECT_EQ(signIn(), u"Can't find the server. Check your network and try again."_s);
    offline = true;
    EXPECT_EQ(signIn(), offlineText);
    // This Mac can always be reached from itself.
    setServer({{u"refuse"_s, true}});
    otherUrl.clear();
    EXPECT_EQ(signIn(), u"Can't connect to the server. Try again later."_s);
}

TEST_F(ServerJourney, ARedirectOfAPostIsNotFollowed) {
    QTcpServer elsewhere;
    ASSERT_TRUE(elsewhere.listen(QHostAddress::LocalHost));
    for (const int status : {301, 302, 303, 307, 308}) {
        setFault({{u"mode"_s, u"redirect"_s},
                  {u"status"_s, status},
                  {u"location"_s, u"https://localhost:%1/v1/agents/login"_s.arg(elsewhere.serverPort())}});
        EXPECT_EQ(signIn(), u"The server didn't respond correctly. Try again later."_s);
    }
    EXPECT_FALSE(elsewhere.waitForNewConnection(0));
    EXPECT_EQ(home.serverRequests().size(), 5);
}

TEST_F(ServerJourney, TheSystemsProxyIsAskedForInTheBackgroundAndToldNothingSecret) {
    QTcpServer listener;
    ASSERT_TRUE(listener.listen(QHostAddress::LocalHost));
    QByteArray heard;
    QObject::connect(&listener, &QTcpServer::newConnection, &listener, [&] {
        QTcpSocket *socket = listener.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [&heard, socket] {
            heard += socket->readAll();
            socket->write("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n");
        });
    });
    std::atomic<int> inMain = 0, elsewhere = 0;
    network.proxyFor = [&](const QString &) {
        ++(QThread::currentThread() == QCoreApplication::instance()->thread() ? inMain : elsewhere);
        return u"http://127.0.0.1:%1"_s.arg(listener.serverPort());
    };
    server = u"account.example:443"_s;
    EXPECT_EQ(signIn(), u"Can't connect to the server. Try again later."_s);
    EXPECT_TRUE(heard.startsWith("CONNECT account.example:443 ")) << heard.constData();
    EXPECT_FALSE(heard.contains("sesame"));
    EXPECT_EQ(inMain, 0);
    EXPECT_EQ(elsewhere, 1);
}

TEST_F(ServerJourney, ProxySettingsThatNeverAnswerEndAtTheDeadline) {
    const auto go = std::make_shared<std::atomic<bool>>(false);
    network.proxyFor = [go](const QString &) {
        while (!*go)
            QThread::msleep(1);
        return QString();
    };
    const auto soon = std::chrono::milliseconds(200);
    EXPECT_EQ(signIn(soon), u"The server timed out. Try again later."_s);
    EXPECT_EQ(signIn(std::chrono::hours(6), soon), u"The server timed out. Try again later."_s);
    *go = true;
}

} // namespace
} // namespace korvel::test
