#include "account/server_api.h"
#include "exchange/http_exchange.h"
#include "journey/journey.h"
#include "journey/listener.h"

#include <csignal>
#include <unistd.h>

namespace korvel::test {
namespace {

const QString SIGNED_IN = u"signed in"_s;
const QString OFFLINE = u"This Mac is offline. Connect to the internet and try again."_s;
const QString NO_CONNECTION = u"Can't connect to the server. Try again later."_s;

QJsonObject mode(const QString &name, QJsonObject more = {}) {
    more[u"mode"_s] = name;
    return agentFault(u"*"_s, more);
}

/// A sign-in at the simulated account server through korvel-exchange, up to the sentence for the user.
struct ServerJourney : Journey {
    QString server;

    void SetUp() override {
        ASSERT_TRUE(home.startAccountServer());
        server = home.accountServer();
    }
    ServerRequest login() const { return *buildLogin(server, u"sam@example.com"_s, u"open sesame"_s, u"Mini"_s); }
    static QString sentence(const Result<HttpReply> &reply) {
        const Result<Credential> credential = parseLogin(reply);
        return credential ? SIGNED_IN : credential.error().detail;
    }
    QString signIn() { return sentence(outcomeOf(servers, login())); }
    void setServer(const QJsonObject &section) { ASSERT_TRUE(home.setScenario({{u"server"_s, section}})); }
};

TEST_F(ServerJourney, EveryFailureOnTheWayHasItsSentence) {
    const QString insecure = u"Can't establish a secure connection. Try another network."_s,
                  timedOut = u"The server timed out. Try again later."_s,
                  unclear = u"The server didn't respond correctly. Try again later."_s;
    const auto certificate = [](const QString &kind) { return QJsonObject{{u"certificate"_s, kind}}; };
    const auto redirect = [](int status) { // if it is followed, nothing listens there
        return mode(u"redirect"_s, {{u"status"_s, status}, {u"location"_s, u"https://localhost:1"_s}});
    };
    const QJsonObject drip = mode(u"drip"_s, {{u"ms"_s, 200}}); // longer than libcurl needs to see that it is slow
    const struct {
        QJsonObject server;
        QString sentence;
        QString cause; ///< A part of the failure's detail: the fault is the one that the row names.
        std::chrono::milliseconds limit = 10s;
        std::chrono::seconds slow = {};
    } cases[] = {
        {{}, SIGNED_IN, {}},
        {{{u"refuse"_s, true}}, NO_CONNECTION, u"connect"_s},
        {mode(u"reset"_s), OFFLINE, u"reset"_s},
        {mode(u"close"_s), OFFLINE, u"Empty reply"_s},
        {mode(u"truncate"_s), OFFLINE, u"closed with"_s},
        {drip, timedOut, u"500 ms"_s, 500ms},
        {drip, timedOut, u"Less than 1024 bytes"_s, 10s, 1s},
        {certificate(u"expired"_s), insecure, u"has expired"_s},
        {certificate(u"not-yet-valid"_s), insecure, u"not yet valid"_s},
        {certificate(u"unknown-authority"_s), insecure, u"unable to get local issuer"_s},
        {certificate(u"wrong-host"_s), insecure, u"name matches"_s},
        {{{u"demandsCertificate"_s, true}}, insecure, u"certificate required"_s},
        {mode(u"html"_s), unclear, {}},
        {redirect(302), unclear, {}},
        {redirect(307), unclear, {}},
        {mode(u"not-http"_s), NO_CONNECTION, u"HTTP/0.9"_s},
        {mode(u"huge"_s, {{u"bytes"_s, 3'000'000}}), NO_CONNECTION, u"bytes"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(QJsonDocument(c.server).toJson().toStdString());
        setServer(c.server);
        ServerRequest request = login();
        request.timeout = c.limit;
        request.slowTimeout = c.slow;
        const Result<HttpReply> reply = outcomeOf(servers, request);
        EXPECT_EQ(sentence(reply), c.sentence);
        EXPECT_TRUE(reply ? c.cause.isEmpty() : reply.error().detail.contains(c.cause));
    }
}

TEST_F(ServerJourney, OnlyAMacWithoutNetworkIsCalledOfflineAndTheSystemsProxyIsUsed) {
    bool offline = false;
    QByteArray proxy; // of the system's settings
    const exchange::Network network{.isOffline = [&] { return offline; },
                                    .proxyFor = [&](const QByteArray &) { return proxy; }};
    const auto said = [&](const QString &address) {
        const exchange::HttpTask task{.request = {.url = u"https://"_s + address}};
        return sentence(exchange::run(task, network, [](const exchange::Progress &) {}));
    };
    const QString unknown = QString(64, u'x') + u".example"_s; // a label too long for DNS
    EXPECT_EQ(said(unknown), u"Can't find the server. Check your network and try again."_s);
    offline = true;
    EXPECT_EQ(said(unknown), OFFLINE);
    setServer({{u"refuse"_s, true}});
    EXPECT_EQ(said(server), NO_CONNECTION); // this Mac can always reach itself
    setServer({});
    EXPECT_NE(said(server), NO_CONNECTION);
    proxy = "http://127.0.0.1:1"; // nothing listens there
    EXPECT_EQ(said(server), NO_CONNECTION);
}

TEST_F(ServerJourney, NothingLeavesExceptOverHttps) {
    for (const QString &url : {u"http://127.0.0.1:%1/x"_s.arg(home.port()), u"file:///etc/passwd"_s, u"https://"_s,
                               u"https://127.0.0.1\r\nX: y"_s})
        EXPECT_EQ(outcomeOf(servers, ServerRequest{.url = url, .timeout = 10s}).error().kind, ErrorKind::InvalidRequest)
            << url.toStdString();
    EXPECT_TRUE(home.requests().isEmpty());
}

TEST_F(ServerJourney, AProxyOfTheEnvironmentThatRefusesIsNoConnection) {
    Listener proxy;
    proxy.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n"); };
    qputenv("https_proxy", proxy.url().toUtf8());
    EXPECT_EQ(signIn(), NO_CONNECTION);
    EXPECT_GT(proxy.connections, 0);
}

TEST_F(ServerJourney, ThePageOfTheInternationalEditionSignsIn) {
    ASSERT_TRUE(home.installJobFile());
    fixed = makeFixedConfig(testDeployment(u"intl"_s), launchEnvironment);
    configure(u"server"_s, server);
    launch();
    item.choose(Action::BrowserLogin); // starts the agent first
    ASSERT_TRUE(eventually([&] { return !desktop.opened.isEmpty(); }));
    ServerRequest form{.method = "POST", .url = desktop.opened.first()};
    form.headers = {{"Content-Type", "application/x-www-form-urlencoded"}};
    form.body = "username=sam%40example.com&password=open+sesame&action=sign-in";
    form.timeout = 10s;
    EXPECT_TRUE(outcomeOf(servers, form));
    ASSERT_TRUE(eventually([&] { return notices.last() == u"● Signed in as sam@example.com"; }));
    ASSERT_TRUE(showsSoon(u"● Connected · sam@example.com · 0 sessions"_s));
    EXPECT_EQ(home.accounts().liveCredentials().size(), 1);
}

/// korvel-exchange while the server does not respond.
struct ExchangeJourney : ServerJourney {
    /// The only run that `parent` has started, once the server has read its request.
    pid_t exchangeOf(qint64 parent) const {
        const auto before = home.serverRequests().size();
        EXPECT_TRUE(eventually([&] { return home.serverRequests().size() > before; }));
        EXPECT_EQ(exchangesOf(static_cast<pid_t>(parent)).size(), 1);
        return exchangesOf(static_cast<pid_t>(parent)).value(0);
    }
};

TEST_F(ExchangeJourney, OneThatIsKilledIsAFailureAndNoneIsLeftWhenItsClientEnds) {
    auto client = std::make_unique<ExchangeClient>(programs, scheduler, exchangeProgram());
    for (const bool isKilled : {true, false}) {
        std::optional<ErrorKind> kind;
        setServer(mode(u"silent"_s));
        client->send(login(), Done<HttpReply>([&](const Result<HttpReply> &reply) { kind = reply.error().kind; }));
        const pid_t process = exchangeOf(::getpid());
        ASSERT_GT(process, 0);
        QFile commandLine(u"/proc/%1/cmdline"_s.arg(process));
        ASSERT_TRUE(commandLine.open(QIODevice::ReadOnly));
        EXPECT_EQ(commandLine.readAll(), QFile::encodeName(exchangeProgram()) + '\0'); // no secret is an argument
        if (isKilled)
            ::kill(process, SIGKILL);
        else
            client.reset();
        ASSERT_TRUE(eventually([&] { return kind.has_value(); }));
        EXPECT_EQ(kind, isKilled ? ErrorKind::UnreadableResponse : ErrorKind::Dropped);
        EXPECT_TRUE(exchangesOf(::getpid()).isEmpty());
        setServer({});
        EXPECT_EQ(signIn(), SIGNED_IN); // the next request works
    }
}

TEST_F(ExchangeJourney, NoneIsLeftWhenTheTrayIsKilled) {
    setServer(mode(u"silent"_s));
    TrayProcess process(home);
    process.beginAutomation({u"--login"_s, u"sam@example.com"_s, server}, "open sesame\n");
    const pid_t exchange = exchangeOf(process.processId());
    process.stop(SIGKILL);
    EXPECT_TRUE(eventually([&] { return !parentOfExchange(exchange); }));
}

} // namespace
} // namespace korvel::test
