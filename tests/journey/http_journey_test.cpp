#include "journey/journey.h"
#include "platform/log.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>
#include <sys/socket.h>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// A listener on the loopback that reads requests and does with each connection what a test says.
struct Listener {
    QTcpServer server;
    int connections = 0;
    QByteArray read;
    std::function<void(QTcpSocket &)> onRequest;

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

    std::optional<Result<HttpReply>> send(const HttpRequest &request) {
        std::optional<Result<HttpReply>> result;
        client->send(request, Done<HttpReply>([&](Result<HttpReply> r) { result.emplace(std::move(r)); }));
        EXPECT_FALSE(result.has_value()); // never before send() returned
        eventually([&] { return result.has_value(); });
        return result;
    }
    HttpRequest post() const {
        HttpRequest request{.method = "POST", .url = agent.url(), .body = "{}"};
        request.timeout = std::chrono::seconds(5);
        return request;
    }
    HttpRequest get(const QString &url) const {
        HttpRequest request{.url = url};
        request.timeout = std::chrono::seconds(5);
        return request;
    }
};

TEST_F(HttpJourney, APostLeavesOnceWhenTheAgentReadsItAndDies) {
    // A connection kept open from a poll is where clients repeat a request by themselves.
    for (int i = 0; i < 20; ++i) {
        agent.read.clear();
        agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); };
        ASSERT_TRUE(send(get(agent.url()))->ok());
        agent.onRequest = [](QTcpSocket &s) { s.abort(); };
        EXPECT_FALSE(send(post())->ok());
        EXPECT_EQ(agent.requests("POST"), 1);
    }
}

TEST_F(HttpJourney, PollsShareOneConnection) {
    agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); };
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(send(get(agent.url()))->ok());
    EXPECT_EQ(agent.connections, 1);
}

TEST_F(HttpJourney, ARedirectIsAnAnswerAndIsNotFollowed) {
    Listener elsewhere;
    elsewhere.onRequest = [](QTcpSocket &) {};
    agent.onRequest = [&](QTcpSocket &s) {
        s.write("HTTP/1.1 302 Found\r\nLocation: " + elsewhere.url().toUtf8() + "\r\nContent-Length: 2\r\n\r\n{}");
    };
    EXPECT_EQ(send(get(agent.url()))->value().status, 302);
    EXPECT_EQ(elsewhere.connections, 0);
}

TEST_F(HttpJourney, AProxyOfTheEnvironmentIsNotUsedForTheAgent) {
    Listener proxy;
    proxy.onRequest = [](QTcpSocket &s) { s.abort(); };
    qputenv("http_proxy", proxy.url(u""_s).toUtf8());
    qputenv("all_proxy", proxy.url(u""_s).toUtf8());
    agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); };
    EXPECT_TRUE(send(get(agent.url()))->ok());
    EXPECT_EQ(proxy.connections, 0);
    qunsetenv("http_proxy");
    qunsetenv("all_proxy");
}

TEST_F(HttpJourney, TheTokenLeavesForNoOtherPlaceThanTheLoopbackAddress) {
    Listener other;
    other.onRequest = [](QTcpSocket &s) { s.abort(); };
    const QString port = QString::number(other.server.serverPort());
    for (const QString &url :
         {u"http://127.0.0.1:80@localhost:%1/x"_s.arg(port), u"http://localhost:%1/x"_s.arg(port),
          u"http://127.0.0.1:x/health"_s, u"http://127.0.0.1:99999/x"_s, u"https://127.0.0.1:%1/x"_s.arg(port),
          u"file:///etc/passwd"_s, u"http://127.0.0.1:\r\nA: b"_s}) {
        const auto result = send(get(url));
        ASSERT_FALSE(result->ok()) << url.toStdString();
        EXPECT_EQ(result->error().kind, ErrorKind::InvalidRequest) << url.toStdString();
    }
    EXPECT_EQ(other.connections, 0);
    // A token with a line break in it must not add a header.
    HttpRequest request = get(agent.url());
    request.headers = {{"X-Korvel-Token", "a\r\nX-Other: b"}};
    EXPECT_EQ(send(request)->error().kind, ErrorKind::InvalidRequest);
}

TEST_F(HttpJourney, TheDeadlineHoldsAgainstADripAndTheSizeAgainstAFlood) {
    agent.onRequest = [](QTcpSocket &s) {
        s.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n");
        auto *drip = new QTimer(&s);
        QObject::connect(drip, &QTimer::timeout, &s, [&s] { s.write("x"); });
        drip->start(20);
    };
    HttpRequest request = get(agent.url());
    request.timeout = std::chrono::milliseconds(300);
    EXPECT_EQ(send(request)->error().kind, ErrorKind::TimedOut);

    agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\n\r\n" + QByteArray(4096, 'x')); };
    request.maxBytes = 2000;
    EXPECT_EQ(send(request)->error().kind, ErrorKind::TooLarge);
    agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\nX: " + QByteArray(4096, 'x') + "\r\n\r\n"); };
    EXPECT_EQ(send(request)->error().kind, ErrorKind::TooLarge);

    const QString url = agent.url();
    agent.server.close();
    EXPECT_EQ(send(get(url))->error().kind, ErrorKind::Unreachable);
}

TEST_F(HttpJourney, RequestsUnderWayAreToldWhenTheClientGoes) {
    agent.onRequest = [](QTcpSocket &) {};
    std::optional<ErrorKind> kind;
    client->send(get(agent.url()), Done<HttpReply>([&](Result<HttpReply> r) { kind = r.error().kind; }));
    client.reset();
    EXPECT_EQ(kind, ErrorKind::Dropped);
}

TEST_F(HttpJourney, APollThatFindsItsConnectionClosedIsAskedOnceMoreAndOnlyOnce) {
    agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); };
    ASSERT_TRUE(send(get(agent.url()))->ok());
    agent.onRequest = [&](QTcpSocket &s) {
        if (agent.connections == 1)
            return s.abort();
        s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
    };
    EXPECT_TRUE(send(get(agent.url()))->ok());
    EXPECT_EQ(agent.connections, 2);
    agent.read.clear();
    agent.onRequest = [](QTcpSocket &s) { s.abort(); };
    EXPECT_EQ(send(get(agent.url()))->error().kind, ErrorKind::Interrupted);
    EXPECT_EQ(agent.requests("GET"), 2);
    // An answer that has begun is not asked for again.
    agent.read.clear();
    agent.onRequest = [](QTcpSocket &s) {
        s.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{}");
        s.disconnectFromHost();
    };
    EXPECT_EQ(send(get(agent.url()))->error().kind, ErrorKind::Interrupted);
    EXPECT_EQ(agent.requests("GET"), 1);
}

TEST_F(HttpJourney, RequestsSideBySideGetTheirOwnAnswers) {
    QList<QTcpSocket *> asking;
    agent.onRequest = [&](QTcpSocket &s) {
        asking.append(&s);
        if (asking.size() == 3) // the last one first
            for (int i = 3; i-- > 0;)
                asking[i]->write("HTTP/1.1 20" + QByteArray::number(i) + " OK\r\nContent-Length: 0\r\n\r\n");
    };
    QList<int> statuses;
    for (int i = 0; i < 3; ++i) {
        client->send(i == 1 ? post() : get(agent.url()),
                     Done<HttpReply>([&](Result<HttpReply> r) { statuses.append(r.value().status); }));
        eventually([&] { return asking.size() == i + 1; });
    }
    eventually([&] { return statuses.size() == 3; });
    std::sort(statuses.begin(), statuses.end());
    EXPECT_EQ(statuses, (QList<int>{200, 201, 202}));
}

TEST_F(HttpJourney, AnAnswerMaySendAgainAndEndTheClient) {
    agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); };
    std::optional<ErrorKind> other;
    int answers = 0;
    const auto last = [&](const Result<HttpReply> &) {
        ++answers;
        client->send(get(agent.url()), Done<HttpReply>([&](const Result<HttpReply> &r) { other = r.error().kind; }));
        client.reset();
    };
    client->send(get(agent.url()), Done<HttpReply>([&](const Result<HttpReply> &) {
                     ++answers;
                     client->send(get(agent.url()), Done<HttpReply>(last));
                 }));
    EXPECT_TRUE(eventually([&] { return answers == 2 && !client; }));
    EXPECT_EQ(other, ErrorKind::Dropped);
    QCoreApplication::processEvents();
}

TEST_F(HttpJourney, ARefusedConnectionIsKnownAlsoWhenItsErrorHasBeenRead) {
    const QString url = agent.url();
    agent.server.close();
    std::optional<ErrorKind> kind;
    client->send(get(url), Done<HttpReply>([&](const Result<HttpReply> &r) { kind = r.error().kind; }));
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
    agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); };
    for (const HttpRequest &request : {get(agent.url()), post(), get(agent.url())})
        EXPECT_EQ(send(request)->error().kind, ErrorKind::Unreachable);
    owner = PortOwner::Nobody;
    EXPECT_EQ(send(get(agent.url()))->error().kind, ErrorKind::Unreachable);
    EXPECT_EQ(lookedUp, QList<quint16>(4, agent.server.serverPort()));
    EXPECT_EQ(lines.size(), 1); // of the stranger

    lookedUp.clear();
    owner = PortOwner::Trusted;
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(send(get(agent.url()))->ok());
    EXPECT_EQ(agent.connections, 1);
    EXPECT_EQ(lookedUp.size(), 1);
    // The agent has gone, and another program listens there: the poll is not sent again to that.
    owner = PortOwner::Stranger;
    agent.onRequest = [](QTcpSocket &s) { s.abort(); };
    EXPECT_EQ(send(get(agent.url()))->error().kind, ErrorKind::Unreachable);
    EXPECT_EQ(agent.connections, 1);
    // What the system does not say is no reason to refuse.
    owner = PortOwner::Unknown;
    lines.clear();
    agent.onRequest = [](QTcpSocket &s) { s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); };
    EXPECT_TRUE(send(post())->ok());
    EXPECT_TRUE(send(post())->ok());
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
            s.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
    };
    EXPECT_TRUE(send(request)->ok());
}

} // namespace
} // namespace korvel::test
