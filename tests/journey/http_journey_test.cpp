#include "base/log.h"
#include "journey/journey.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>
#include <sys/socket.h>

namespace korvel::test {
namespace {

void respond(QTcpSocket &socket) { socket.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); }

/// A listener on the loopback that reads requests and does with each connection what a test says.
struct Listener {
    QTcpServer server;
    int connections = 0;
    QByteArray read;
    std::function<void(QTcpSocket &)> onRequest = respond;

    Listener() {
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            ++connections;
            QTcpSocket *socket = server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                read += socket->readAll();
                onRequest(*socket);
            });
        });
    }
    QString url(const QString &path = u"/x"_s) const {
        return u"http://127.0.0.1:%1%2"_s.arg(server.serverPort()).arg(path);
    }
    qsizetype requests(const QByteArray &method) const { return read.count(method + " /"); }
};

/// The client for the agent.
struct HttpJourney : ::testing::Test {
    std::unique_ptr<LoopbackHttpClient> client = std::make_unique<LoopbackHttpClient>();
    Listener agent;

    Result<HttpReply> send(const HttpRequest &request) {
        std::optional<Result<HttpReply>> result;
        client->send(request, Done<HttpReply>([&](Result<HttpReply> r) { result.emplace(std::move(r)); }));
        EXPECT_FALSE(result.has_value()); // never before send() returned
        eventually([&] { return result.has_value(); });
        return *result;
    }
    std::optional<ErrorKind> failureOf(const HttpRequest &request) {
        const auto result = send(request);
        return result ? std::nullopt : std::optional(result.error().kind);
    }
    static HttpRequest get(const QString &url) {
        HttpRequest request{.url = url};
        request.timeout = std::chrono::seconds(5);
        return request;
    }
    HttpRequest get() const { return get(agent.url()); }
    HttpRequest post() const {
        HttpRequest request = get();
        request.method = "POST";
        request.body = "{}";
        return request;
    }
};

TEST_F(HttpJourney, APostLeavesOnceWhenTheAgentReadsItAndDies) {
    // A connection kept open from a poll is where clients repeat a request by themselves.
    for (int i = 0; i < 20; ++i) {
        agent.read.clear();
        agent.onRequest = respond;
        ASSERT_TRUE(send(get()));
        agent.onRequest = [](QTcpSocket &s) { s.abort(); };
        EXPECT_FALSE(send(post()));
        EXPECT_EQ(agent.requests("POST"), 1);
    }
}

TEST_F(HttpJourney, NothingLeadsARequestToAnotherPlaceThanTheLoopbackAddress) {
    Listener other;
    other.onRequest = [](QTcpSocket &s) { s.abort(); };
    const QString port = QString::number(other.server.serverPort());
    for (const QString &url :
         {u"http://127.0.0.1:80@localhost:%1/x"_s.arg(port), u"http://localhost:%1/x"_s.arg(port),
          u"http://127.0.0.1:x/health"_s, u"http://127.0.0.1:99999/x"_s, u"https://127.0.0.1:%1/x"_s.arg(port),
          u"file:///etc/passwd"_s, u"http://127.0.0.1:\r\nA: b"_s})
        EXPECT_EQ(failureOf(get(url)), ErrorKind::InvalidRequest) << url.toStdString();
    // A token with a line break in it must not add a header.
    HttpRequest request = get();
    request.headers = {{"X-Korvel-Token", "a\r\nX-Other: b"}};
    EXPECT_EQ(failureOf(request), ErrorKind::InvalidRequest);
    qputenv("http_proxy", other.url(u""_s).toUtf8());
    qputenv("all_proxy", other.url(u""_s).toUtf8());
    EXPECT_TRUE(send(get()));
    qunsetenv("http_proxy");
    qunsetenv("all_proxy");
    agent.onRequest = [&](QTcpSocket &s) {
        s.write("HTTP/1.1 302 Found\r\nLocation: " + other.url().toUtf8() + "\r\nContent-Length: 2\r\n\r\n{}");
    };
    EXPECT_EQ(send(get()).value().status, 302);
    EXPECT_EQ(other.connections, 0);
}

TEST_F(HttpJourney, TheDeadlineHoldsAgainstADripAndTheSizeAgainstAFlood) {
    agent.onRequest = [](QTcpSocket &s) {
        s.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n");
        auto *drip = new QTimer(&s);
        QObject::connect(drip, &QTimer::timeout, &s, [&s] { s.write("x"); });
        drip->start(20);
    };
    HttpRequest request = get();
    request.timeout = std::chrono::milliseconds(300);
    EXPECT_EQ(failureOf(request), ErrorKind::TimedOut);
    request.maxBytes = 2000;
    for (const QByteArray &head : {"\r\n"_ba, "X: "_ba}) {
        agent.onRequest = [&](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\n" + head + QByteArray(4096, 'x')); };
        EXPECT_EQ(failureOf(request), ErrorKind::TooLarge);
    }
}

TEST_F(HttpJourney, PollsShareAConnectionAndOneThatFindsItClosedIsSentOnceMoreAndOnlyOnce) {
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(send(get()));
    EXPECT_EQ(agent.connections, 1);
    agent.onRequest = [&](QTcpSocket &s) { agent.connections == 1 ? s.abort() : respond(s); };
    EXPECT_TRUE(send(get()));
    EXPECT_EQ(agent.connections, 2);
    agent.read.clear();
    agent.onRequest = [](QTcpSocket &s) { s.abort(); };
    EXPECT_EQ(failureOf(get()), ErrorKind::Interrupted);
    EXPECT_EQ(agent.requests("GET"), 2);
    // One whose response has begun is not sent again.
    agent.read.clear();
    agent.onRequest = [](QTcpSocket &s) {
        s.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{}");
        s.disconnectFromHost();
    };
    EXPECT_EQ(failureOf(get()), ErrorKind::Interrupted);
    EXPECT_EQ(agent.requests("GET"), 1);
}

TEST_F(HttpJourney, RequestsSideBySideGetTheirOwnResponses) {
    QList<QTcpSocket *> asking;
    agent.onRequest = [&](QTcpSocket &s) {
        asking.append(&s);
        if (asking.size() == 3) // the last one first
            for (int i = 3; i-- > 0;)
                asking[i]->write("HTTP/1.1 20" + QByteArray::number(i) + " OK\r\nContent-Length: 0\r\n\r\n");
    };
    QList<int> statuses;
    for (int i = 0; i < 3; ++i) {
        client->send(i == 1 ? post() : get(),
                     Done<HttpReply>([&](Result<HttpReply> r) { statuses.append(r.value().status); }));
        eventually([&] { return asking.size() == i + 1; });
    }
    eventually([&] { return statuses.size() == 3; });
    std::ranges::sort(statuses);
    EXPECT_EQ(statuses, (QList<int>{200, 201, 202}));
}

TEST_F(HttpJourney, AResponseMaySendAgainAndEndTheClient) {
    std::optional<ErrorKind> other;
    int answers = 0;
    const auto last = [&](const Result<HttpReply> &) {
        ++answers;
        client->send(get(), Done<HttpReply>([&](const Result<HttpReply> &r) { other = r.error().kind; }));
        client.reset();
    };
    client->send(get(), Done<HttpReply>([&](const Result<HttpReply> &) {
                     ++answers;
                     client->send(get(), Done<HttpReply>(last));
                 }));
    EXPECT_TRUE(eventually([&] { return answers == 2 && !client; }));
    EXPECT_EQ(other, ErrorKind::Dropped); // reported when the client goes
    QCoreApplication::processEvents();
}

TEST_F(HttpJourney, ARefusedConnectionIsKnownAlsoWhenItsErrorHasBeenRead) {
    const HttpRequest request = get();
    agent.server.close();
    EXPECT_EQ(failureOf(request), ErrorKind::Unreachable);
    std::optional<ErrorKind> kind;
    client->send(request, Done<HttpReply>([&](const Result<HttpReply> &r) { kind = r.error().kind; }));
    for (int descriptor = 3; descriptor < 256; ++descriptor) { // as what watches sockets on macOS does
        int error = 0;
        socklen_t size = sizeof error;
        ::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size);
    }
    EXPECT_TRUE(eventually([&] { return kind.has_value(); }));
    EXPECT_EQ(kind, ErrorKind::Unreachable);
}

TEST_F(HttpJourney, AStrangersProgramGetsNothingAndAKeptConnectionIsNotLookedUp) {
    QList<quint16> lookedUp;
    QStringList lines;
    PortOwner owner = PortOwner::Stranger;
    setLogSink([&](const QString &line) { lines.append(line); });
    client = std::make_unique<LoopbackHttpClient>([&](quint16 port) {
        lookedUp.append(port);
        return owner;
    });
    for (const HttpRequest &request : {get(), post(), get()})
        EXPECT_EQ(failureOf(request), ErrorKind::Unreachable);
    owner = PortOwner::Nobody;
    EXPECT_EQ(failureOf(get()), ErrorKind::Unreachable);
    EXPECT_EQ(lookedUp, QList<quint16>(4, agent.server.serverPort()));
    EXPECT_EQ(lines.size(), 1); // of the stranger

    lookedUp.clear();
    owner = PortOwner::Trusted;
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(send(get()));
    EXPECT_EQ(agent.connections, 1);
    EXPECT_EQ(lookedUp.size(), 1);
    // The agent has gone, and another program listens there: the poll is not sent again to that.
    owner = PortOwner::Stranger;
    agent.onRequest = [](QTcpSocket &s) { s.abort(); };
    EXPECT_EQ(failureOf(get()), ErrorKind::Unreachable);
    EXPECT_EQ(agent.connections, 1);
    // What the system does not say is no reason to refuse.
    owner = PortOwner::Unknown;
    lines.clear();
    agent.onRequest = respond;
    EXPECT_TRUE(send(post()) && send(post()));
    EXPECT_EQ(lines.size(), 1);
    setLogSink({});
}

TEST_F(HttpJourney, TheSystemKnowsWhoListens) {
    EXPECT_EQ(portOwner(agent.server.serverPort()), PortOwner::Trusted);
    QTcpSocket bound; // and not listening
    ASSERT_TRUE(bound.bind(QHostAddress::LocalHost));
    EXPECT_EQ(portOwner(bound.localPort()), PortOwner::Nobody);
    QTcpServer wide;
    ASSERT_TRUE(wide.listen(QHostAddress::Any)); // one socket for both versions of IP, where the system has both
    EXPECT_EQ(portOwner(wide.serverPort()), PortOwner::Trusted);
}

TEST_F(HttpJourney, ALongRequestArrivesWhole) {
    HttpRequest request = post();
    request.body = QByteArray(4 << 20, 'x'); // more than the system takes at once
    agent.onRequest = [&](QTcpSocket &s) {
        if (agent.read.endsWith("x") && agent.read.size() >= request.body.size() && agent.read.count('x') > (4 << 20))
            respond(s);
    };
    EXPECT_TRUE(send(request));
}

} // namespace
} // namespace korvel::test
