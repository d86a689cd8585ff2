#include "account/net_error.h"
#include "account/server_api.h"
#include "exchange/http_exchange.h"
#include "journey/exchange_processes.h"
#include "journey/journey.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <csignal>

namespace korvel::test {
namespace {

const QString OFFLINE = u"This Mac is offline. Connect to the internet and try again."_s;
const QString NO_CONNECTION = u"Can't connect to the server. Try again later."_s;

/// A sign-in at the simulated account server through korvel-exchange, down to the sentence.
struct ServerJourney : Journey {
    QString server;

    void SetUp() override {
        ASSERT_TRUE(home.startAccountServer());
        server = home.accountServer();
    }
    ServerRequest login() const { return *buildLogin(server, u"sam@example.com"_s, u"open sesame"_s, u"Mini"_s); }
    static QString sentence(const Result<HttpReply> &reply) {
        const Result<Credential> credential = parseLogin(reply);
        return credential ? u"signed in"_s : credential.error().detail;
    }
    QString signIn(std::chrono::milliseconds limit = 10s, std::chrono::seconds slow = {}) {
        ServerRequest request = login();
        request.timeout = limit;
        request.slowTimeout = slow;
        std::optional<QString> said;
        servers.send(request, Done<HttpReply>([&](const Result<HttpReply> &reply) { said = sentence(reply); }));
        EXPECT_FALSE(said.has_value()); // never before send() returned
        EXPECT_TRUE(eventually([&] { return said.has_value(); }));
        return said.value_or(QString());
    }
    void setServer(const QJsonObject &section) { ASSERT_TRUE(home.setScenario({{u"server"_s, section}})); }
    void setFault(const QJsonObject &fault) { setServer({{u"faults"_s, QJsonObject{{u"*"_s, fault}}}}); }
};

TEST_F(ServerJourney, EveryFailureOnTheWayHasItsSentenceInBothLanguages) {
    const std::pair<QString, QString> signedIn{u"signed in"_s, u"signed in"_s}, maintained{u"维护中"_s, u"维护中"_s},
        offline{OFFLINE, u"这台 Mac 未连接网络，请连接后重试"_s},
        timedOut{u"The server timed out. Try again later."_s, u"服务器响应超时，请稍后重试"_s},
        insecure{u"Can't establish a secure connection. Try another network."_s,
                 u"无法建立安全连接，请更换网络后重试"_s},
        noConnection{NO_CONNECTION, u"无法连接服务器，请稍后重试"_s},
        noSense{u"The server didn't respond correctly. Try again later."_s, u"服务器未正常响应，请稍后重试"_s};
    const auto fault = [](const QJsonObject &f) { return QJsonObject{{u"faults"_s, QJsonObject{{u"*"_s, f}}}}; };
    const auto certificate = [](const QString &kind) { return QJsonObject{{u"certificate"_s, kind}}; };
    const struct {
        QJsonObject server;
        std::pair<QString, QString> sentence;
    } cases[] = {
        {{}, signedIn},
        {{{u"refuse"_s, true}}, noConnection},
        {fault({{u"mode"_s, u"reset"_s}}), offline},
        {fault({{u"mode"_s, u"close"_s}}), offline},
        {fault({{u"mode"_s, u"truncate"_s}}), offline},
        {fault({{u"mode"_s, u"drip"_s}, {u"ms"_s, 20}}), timedOut},
        {certificate(u"expired"_s), insecure},
        {certificate(u"not-yet-valid"_s), insecure},
        {certificate(u"unknown-authority"_s), insecure},
        {certificate(u"wrong-host"_s), insecure},
        {{{u"demandsCertificate"_s, true}}, insecure},
        {fault({{u"mode"_s, u"html"_s}}), noSense},
        {fault({{u"mode"_s, u"not-http"_s}}), noConnection},
        {fault({{u"mode"_s, u"huge"_s}, {u"bytes"_s, 3'000'000}}), noConnection},
        {fault({{u"mode"_s, u"answer"_s}, {u"status"_s, 500}, {u"body"_s, QJsonObject{{u"error"_s, u"维护中"_s}}}}),
         maintained},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(QJsonDocument(c.server).toJson().toStdString());
        setServer(c.server);
        const bool late = c.sentence == timedOut;
        for (const bool chinese : {false, true}) {
            const LanguageScope language(chinese);
            EXPECT_EQ(signIn(late ? 500ms : 10s), chinese ? c.sentence.second : c.sentence.first);
        }
    }
}

TEST_F(ServerJourney, LessThanAKilobyteASecondIsTooSlow) {
    setFault({{u"mode"_s, u"drip"_s}, {u"ms"_s, 20}});
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(signIn(1h, 1s), u"The server timed out. Try again later."_s);
    EXPECT_LT(clock.elapsed(), 10'000);
}

TEST_F(ServerJourney, OnlyAMacWithoutNetworkIsCalledOfflineAndTheSystemsProxyIsTheWay) {
    bool offline = false;
    QByteArray proxy; // of the system's settings
    const exchange::Network network{.isOffline = [&] { return offline; },
                                    .proxyFor = [&](const QByteArray &) { return proxy; }};
    const auto said = [&](const QString &url) {
        return sentence(exchange::run({.request = {.url = url}}, network, [](const exchange::Progress &) {}));
    };
    // A label longer than DNS allows is unknown without asking anybody.
    const QString unknown = u"https://"_s + QString(64, u'x') + u".example/"_s;
    EXPECT_EQ(said(unknown), u"Can't find the server. Check your network and try again."_s);
    offline = true;
    EXPECT_EQ(said(unknown), OFFLINE);
    // This Mac can always be reached from itself.
    setServer({{u"refuse"_s, true}});
    EXPECT_EQ(said(u"https://"_s + server), NO_CONNECTION);
    setServer({});
    EXPECT_NE(said(u"https://"_s + server), NO_CONNECTION);
    proxy = "http://127.0.0.1:1"; // nobody listens there
    EXPECT_EQ(said(u"https://"_s + server), NO_CONNECTION);
}

TEST_F(ServerJourney, NothingLeavesButOverHttps) {
    for (const QString &url : {u"http://127.0.0.1:%1/x"_s.arg(home.port()), u"file:///etc/passwd"_s, u"https://"_s,
                               u"https://127.0.0.1\r\nX: y"_s}) {
        std::optional<ErrorKind> kind;
        ServerRequest request{.url = url};
        request.timeout = 10s;
        servers.send(request, Done<HttpReply>([&](const Result<HttpReply> &reply) { kind = reply.error().kind; }));
        EXPECT_TRUE(eventually([&] { return kind.has_value(); }));
        EXPECT_EQ(kind, ErrorKind::InvalidRequest) << url.toStdString();
    }
    EXPECT_TRUE(home.requests().isEmpty());
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

TEST_F(ServerJourney, TheProxyOfTheEnvironmentIsUsedAndToldNothingSecretAndNoKeysAreLogged) {
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
    const QString keys = folder.filePath(u"keys"_s);
    qputenv("SSLKEYLOGFILE", QFile::encodeName(keys));
    EXPECT_EQ(signIn(), u"signed in"_s);
    EXPECT_FALSE(QFile::exists(keys));
    qputenv("https_proxy", "http://127.0.0.1:" + QByteArray::number(listener.serverPort()));
    server = u"account.example:443"_s;
    EXPECT_EQ(signIn(), NO_CONNECTION);
    EXPECT_TRUE(heard.startsWith("CONNECT account.example:443 ")) << heard.constData();
    EXPECT_FALSE(heard.contains("sesame"));
}

/// What becomes of korvel-exchange itself.
struct ExchangeJourney : ServerJourney {
    /// Sends a request that the server reads and never responds to, through `client`.
    void sendToSilence(ServerClient &client, std::optional<Result<HttpReply>> &result) {
        setFault({{u"mode"_s, u"silent"_s}});
        ServerRequest request = login();
        request.timeout = 1h;
        client.send(request, Done<HttpReply>([&result](Result<HttpReply> r) { result.emplace(std::move(r)); }));
        ASSERT_TRUE(eventually([&] { return home.serverRequests().size() == 1; }));
        ASSERT_EQ(exchangesOf(::getpid()).size(), 1);
    }
};

TEST_F(ExchangeJourney, OneThatIsKilledIsAFailureAndTheNextTryWorks) {
    std::optional<Result<HttpReply>> result;
    ASSERT_NO_FATAL_FAILURE(sendToSilence(servers, result));
    const qint64 pid = exchangesOf(::getpid()).first();
    QFile commandLine(u"/proc/%1/cmdline"_s.arg(pid));
    ASSERT_TRUE(commandLine.open(QIODevice::ReadOnly));
    EXPECT_EQ(commandLine.readAll(), QFile::encodeName(exchangeProgram()) + '\0'); // no secret is an argument
    ::kill(static_cast<pid_t>(pid), SIGKILL);
    ASSERT_TRUE(eventually([&] { return result.has_value(); }));
    EXPECT_EQ(sentence(*result), NO_CONNECTION);
    setServer({});
    EXPECT_EQ(signIn(), u"signed in"_s);
}

TEST_F(ExchangeJourney, NoneIsLeftWhenNobodyWaitsForIt) {
    std::optional<Result<HttpReply>> result;
    auto client = std::make_unique<ExchangeClient>(programs, scheduler, exchangeProgram());
    ASSERT_NO_FATAL_FAILURE(sendToSilence(*client, result));
    client.reset();
    ASSERT_TRUE(eventually([&] { return result.has_value(); }));
    EXPECT_EQ(result->error().kind, ErrorKind::Dropped);
    EXPECT_TRUE(exchangesOf(::getpid()).isEmpty());
}

TEST_F(ExchangeJourney, NoneIsLeftWhenTheTrayIsKilled) {
    setFault({{u"mode"_s, u"silent"_s}});
    TrayProcess tray(home);
    tray.beginAutomation({u"--login"_s, u"sam@example.com"_s, server}, "open sesame\n");
    ASSERT_TRUE(eventually([&] { return home.serverRequests().size() == 1; }));
    const auto exchanges = exchangesOf(tray.processId());
    ASSERT_EQ(exchanges.size(), 1);
    tray.kill();
    EXPECT_TRUE(tray.waitForFinished());
    EXPECT_TRUE(eventually([&] { return !Process(QString::number(exchanges.first())).lives; }));
}

} // namespace
} // namespace korvel::test
