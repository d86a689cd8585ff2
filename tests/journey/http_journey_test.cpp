#include "base/log.h"
#include "journey/journey.h"
#include "journey/listener.h"

#include <sys/socket.h>

namespace korvel::test {
namespace {

void reset(QTcpSocket &socket) { socket.abort(); }

/// The client for the agent.
struct HttpJourney : ::testing::Test {
    std::unique_ptr<LoopbackHttpClient> client = std::make_unique<LoopbackHttpClient>();
    Listener agent;

    Result<HttpReply> send(const HttpRequest &request) { return outcomeOf(*client, request); }
    std::optional<ErrorKind> failureOf(const HttpRequest &request) {
        const auto result = send(request);
        return result ? std::nullopt : std::optional(result.error().kind);
    }
    /// The number of requests that leave for one that is interrupted.
    qsizetype sentFor(const HttpRequest &request) {
        agent.read.clear();
        EXPECT_EQ(failureOf(request), ErrorKind::Interrupted);
        return agent.read.count(request.method + " /");
    }
    static HttpRequest get(const QString &url) {
        HttpRequest request{.url = url};
        request.timeout = std::chrono::seconds(5);
        return request;
    }
    HttpRequest get() const { return get(agent.url() + u"/x"_s); }
    HttpRequest post() const {
        HttpRequest request = get();
        request.method = "POST";
        request.body = "{}";
        return request;
    }
};

TEST_F(HttpJourney, APostLeavesOnceWhenTheAgentReadsItAndDies) {
    // On a connection left open by a poll, a client may repeat a request.
    for (int i = 0; i < 20; ++i) {
        agent.onRequest = respond;
        ASSERT_TRUE(send(get()));
        agent.onRequest = reset;
        EXPECT_EQ(sentFor(post()), 1);
    }
}

TEST_F(HttpJourney, NothingLeadsARequestAwayFromTheLoopbackAddress) {
    Listener other;
    const QString port = QString::number(other.server.serverPort());
    for (const QString &url :
         {u"http://127.0.0.1:80@localhost:%1/x"_s.arg(port), u"http://localhost:%1/x"_s.arg(port),
          u"http://127.0.0.1:x/health"_s, u"http://127.0.0.1:99999/x"_s, u"https://127.0.0.1:%1/x"_s.arg(port),
          u"file:///etc/passwd"_s, u"http://127.0.0.1:\r\nA: b"_s})
        EXPECT_EQ(failureOf(get(url)), ErrorKind::InvalidRequest) << url.toStdString();
    HttpRequest request = get();
    request.headers = {{"X-Korvel-Token", "a\r\nX-Other: b"}}; // must not add a header
    EXPECT_EQ(failureOf(request), ErrorKind::InvalidRequest);
    for (const char *variable : {"http_proxy", "all_proxy"}) {
        qputenv(variable, other.url().toUtf8());
        EXPECT_TRUE(send(get()));
        qunsetenv(variable);
    }
    agent.onRequest = [&](QTcpSocket &s) {
        s.write("HTTP/1.1 302 Found\r\nLocation: " + other.url().toUtf8() + "\r\nContent-Length: 2\r\n\r\n{}");
    };
    EXPECT_EQ(send(get()).value().status, 302);
    EXPECT_EQ(other.connections, 0);
}

TEST_F(HttpJourney, PollsShareAConnectionAndOneThatFindsItClosedIsRepeatedOnce) {
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(send(get()));
    EXPECT_EQ(agent.connections, 1);
    agent.onRequest = [&](QTcpSocket &s) { agent.connections == 1 ? reset(s) : respond(s); };
    EXPECT_TRUE(send(get()));
    EXPECT_EQ(agent.connections, 2);
    agent.onRequest = reset;
    EXPECT_EQ(sentFor(get()), 2);
    agent.onRequest = respond;
    ASSERT_TRUE(send(get()));
    agent.onRequest = [](QTcpSocket &s) { // a response that has begun
        s.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{}");
        s.disconnectFromHost();
    };
    EXPECT_EQ(sentFor(get()), 1);
}

TEST_F(HttpJourney, ACompletionMaySendAgainAndDestroyTheClient) {
    std::optional<ErrorKind> other;
    client->send(get(), Done<HttpReply>([&](const Result<HttpReply> &) {
                     client->send(get(), Done<HttpReply>([&](const Result<HttpReply> &r) { other = r.error().kind; }));
                     client.reset();
                 }));
    EXPECT_TRUE(eventually([&] { return !client; }));
    EXPECT_EQ(other, ErrorKind::Dropped);
    QCoreApplication::processEvents();
}

TEST_F(HttpJourney, ARefusedConnectionIsUnreachableEvenIfItsErrorHasBeenRead) {
    agent.server.close();
    std::optional<ErrorKind> kind;
    client->send(get(), Done<HttpReply>([&](const Result<HttpReply> &r) { kind = r.error().kind; }));
    int error = 0;
    socklen_t size = sizeof error;
    for (int descriptor = 3; descriptor < 256; ++descriptor) // as Qt's event loop on macOS does
        ::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size);
    EXPECT_TRUE(eventually([&] { return kind == ErrorKind::Unreachable; }));
}

TEST_F(HttpJourney, AStrangersProgramGetsNothingAndAKeptConnectionIsNotLookedUp) {
    int lookUps = 0, lines = 0;
    PortOwner owner = PortOwner::Stranger;
    setLogSink([&](const QString &) { ++lines; });
    client = std::make_unique<LoopbackHttpClient>([&](quint16 port) {
        lookUps += port == agent.server.serverPort();
        return owner;
    });
    for (const HttpRequest &request : {get(), post()})
        EXPECT_EQ(failureOf(request), ErrorKind::Unreachable);
    EXPECT_EQ(lines, 1); // each owner is logged once
    owner = PortOwner::Nobody;
    EXPECT_EQ(failureOf(get()), ErrorKind::Unreachable);
    owner = PortOwner::Trusted;
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(send(get()));
    EXPECT_EQ(lookUps, 4);
    // The agent ends and another program takes its port: the poll is not repeated there.
    owner = PortOwner::Stranger;
    agent.onRequest = reset;
    EXPECT_EQ(failureOf(get()), ErrorKind::Unreachable);
    EXPECT_EQ(agent.connections, 1);
    owner = PortOwner::Unknown; // is no reason to refuse
    agent.onRequest = respond;
    EXPECT_TRUE(send(post()) && send(post()));
    EXPECT_EQ(lines, 2);
    setLogSink({});
}

} // namespace
} // namespace korvel::test
