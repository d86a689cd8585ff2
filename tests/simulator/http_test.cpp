#include "home_fixture.h"

#include "simulator/files.h"
#include "simulator/http_message.h"

#include <QJsonDocument>

#include <functional>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

class AgentHttpTest : public HomeTest {
protected:
    void setFault(const QJsonObject &fault) {
        home.setScenario({{u"connectMs"_s, 0}, {u"faults"_s, QJsonObject{{u"/health"_s, fault}}}});
    }
    static QJsonObject parsed(const Exchange &exchange) { return QJsonDocument::fromJson(exchange.body).object(); }
    static qsizetype announced(const Exchange &exchange) {
        const QByteArray name = "Content-Length: ";
        const qsizetype at = exchange.head.indexOf(name) + name.size();
        return exchange.head.mid(at, exchange.head.indexOf('\r', at) - at).toLongLong();
    }
};

struct FaultCase {
    const char *mode;
    QJsonObject more;
    std::function<bool(const Exchange &)> holds;
};

bool isJson(const Exchange &exchange) { return !QJsonDocument::fromJson(exchange.body).isNull(); }

} // namespace

TEST_F(AgentHttpTest, HealthNeedsTheTokenAndSaysHowTheAgentIs) {
    home.setScenario({{u"connectMs"_s, 0}, {u"health"_s, QJsonObject{{u"sessions"_s, 3}, {u"perms"_s, {}}}}});
    ASSERT_TRUE(startAgent());
    const Exchange without = get(home.port(), "/health", "");
    EXPECT_TRUE(without.head.startsWith("HTTP/1.1 401 "));
    EXPECT_EQ(parsed(without).value("ok"_L1), QJsonValue(false));
    EXPECT_TRUE(get(home.port(), "/health", "guess").head.startsWith("HTTP/1.1 401 "));
    EXPECT_TRUE(get(home.port(), "/elsewhere", token()).head.startsWith("HTTP/1.1 404 "));

    const QJsonObject report = parsed(health());
    EXPECT_EQ(report.value("ok"_L1), QJsonValue(true));
    EXPECT_EQ(report.value("online"_L1), QJsonValue(true));
    EXPECT_EQ(report.value("ver"_L1), QJsonValue(u"korvel-agent/1.4.2"_s));
    EXPECT_EQ(report.value("account"_L1), QJsonValue(u"sam@example.com"_s));
    EXPECT_EQ(report.value("sessions"_L1), QJsonValue(3));
    EXPECT_FALSE(report.contains("perms"_L1)) << "null in the merge patch removes a key";
    EXPECT_EQ(report.value("e2ee"_L1).toObject().value("state"_L1), QJsonValue(u"active"_s));
}

TEST_F(AgentHttpTest, SignInAndScenarioTakeEffectWhileTheAgentRuns) {
    home.signOut();
    home.setScenario({{u"connectMs"_s, 0}});
    ASSERT_TRUE(startAgent());
    EXPECT_EQ(parsed(health()).value("online"_L1), QJsonValue(false));
    home.signIn(u"kim"_s);
    EXPECT_EQ(parsed(health()).value("online"_L1), QJsonValue(true));
    home.changeScenario({{u"offline"_s, true}});
    EXPECT_EQ(parsed(health()).value("online"_L1), QJsonValue(false));
}

TEST_F(AgentHttpTest, FaultsReachTheWireAsTheScenarioSays) {
    ASSERT_TRUE(startAgent());
    const FaultCase cases[] = {
        {"silent", {}, [](const Exchange &e) { return e.end == End::Silent && e.head.isEmpty(); }},
        {"close", {}, [](const Exchange &e) { return e.end == End::Closed; }},
        {"reset", {}, [](const Exchange &e) { return e.end == End::Reset; }},
        {"not-http", {}, [](const Exchange &e) { return !e.head.startsWith("HTTP/"); }},
        {"garbage", {}, [](const Exchange &e) { return e.head.startsWith("HTTP/1.1 200") && !isJson(e); }},
        {"not-utf8", {}, [](const Exchange &e) { return !e.body.isEmpty() && !e.body.isValidUtf8(); }},
        {"array", {}, [](const Exchange &e) { return QJsonDocument::fromJson(e.body).isArray(); }},
        {"wrong-types", {}, [](const Exchange &e) { return parsed(e).value("ok"_L1).isString(); }},
        {"deep", {}, [](const Exchange &e) { return e.body.count('[') == 100'000 && announced(e) == e.body.size(); }},
        {"html", {}, [](const Exchange &e) { return e.head.contains(" 500 ") && e.head.contains("text/html"); }},
        {"truncate", {}, [](const Exchange &e) { return !e.body.isEmpty() && e.body.size() < announced(e); }},
        {"huge", {{u"bytes"_s, 900'000}}, [](const Exchange &e) { return e.body.size() == 900'000 && isJson(e); }},
        {"drip", {{u"ms"_s, 1}}, [](const Exchange &e) { return parsed(e).value("ok"_L1).toBool(); }},
        {"", {{u"delayMs"_s, 20}}, [](const Exchange &e) { return parsed(e).value("ok"_L1).toBool(); }},
    };
    for (const FaultCase &each : cases) {
        setFault(mergePatch({{u"mode"_s, QString::fromLatin1(each.mode)}}, each.more));
        const bool silent = QByteArray(each.mode) == "silent";
        const Exchange exchange = health(silent ? 200 : 10'000);
        EXPECT_TRUE(each.holds(exchange)) << each.mode << ": " << exchange.head.constData() << "\n"
                                          << exchange.body.left(200).constData();
    }
}

TEST_F(AgentHttpTest, HugeAnswerMayBeLeftInTheMiddle) {
    ASSERT_TRUE(startAgent());
    setFault({{u"mode"_s, u"huge"_s}});
    constexpr qsizetype PART = 30'000'000;
    const Exchange exchange = get(home.port(), "/health", token(), 10'000, PART);
    EXPECT_EQ(announced(exchange), 100'000'000);
    EXPECT_GE(exchange.head.size() + exchange.body.size(), PART - 4);
    setFault({});
    EXPECT_TRUE(parsed(health()).value("ok"_L1).toBool()) << "the agent goes on after a client that left";
}

TEST_F(AgentHttpTest, ExitReadsTheRequestThenDiesAndLimitedFaultsEnd) {
    home.setScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 10}}}});
    ASSERT_TRUE(startAgent());
    home.changeScenario({{u"faults"_s, QJsonObject{{u"*"_s, QJsonObject{{u"mode"_s, u"exit"_s}, {u"times"_s, 1}}}}}});
    const qint64 before = home.agentPid();
    EXPECT_NE(health().end, End::Answered);
    EXPECT_EQ(home.requests().last().value("path"_L1), QJsonValue(u"/health"_s));
    EXPECT_TRUE(eventually([&] { return health().end == End::Answered; }));
    EXPECT_NE(home.agentPid(), before);
}

TEST_F(AgentHttpTest, RequestsAreLoggedWithTokenConnectionAndNumber) {
    ASSERT_TRUE(startAgent());
    const QByteArray secret = token();
    const auto loggedBefore = home.requests().size();
    get(home.port(), "/health?a=b", secret);
    get(home.port(), "/health", "guess");
    get(home.port(), "/health", "");
    const QList<QJsonObject> requests = home.requests().mid(loggedBefore);
    ASSERT_EQ(requests.size(), 3);
    EXPECT_EQ(requests[0].value("path"_L1), QJsonValue(u"/health?a=b"_s));
    EXPECT_EQ(requests[0].value("token"_L1), QJsonValue(u"right"_s));
    EXPECT_EQ(requests[1].value("token"_L1), QJsonValue(u"wrong"_s));
    EXPECT_EQ(requests[2].value("token"_L1), QJsonValue(u"absent"_s));
    EXPECT_EQ(requests[0].value("request"_L1), QJsonValue(1));
    EXPECT_EQ(requests[2].value("connection"_L1).toInt(), requests[0].value("connection"_L1).toInt() + 2);
    EXPECT_EQ(requests[0].value("agent"_L1).toInteger(), home.agentPid());
}

TEST(HttpRequestReaderTest, ReadsRequestsInPiecesAndKeepsWhatFollows) {
    using Progress = HttpRequestReader::Progress;
    HttpRequestReader reader;
    EXPECT_EQ(reader.feed("POST /x?q HTTP/1.1\r\nContent-Le"), Progress::Incomplete);
    EXPECT_EQ(reader.feed("ngth: 3\r\nX-A:  b \r\n\r\nab"), Progress::Incomplete);
    EXPECT_EQ(reader.feed("cGET / HTTP/1.0\r\n\r\n"), Progress::Complete);
    const HttpRequest first = reader.take();
    EXPECT_EQ(first.path(), "/x");
    EXPECT_EQ(first.header("x-a"), "b");
    EXPECT_EQ(first.body, "abc");
    EXPECT_TRUE(first.keepAlive);
    EXPECT_EQ(reader.feed({}), Progress::Complete);
    EXPECT_FALSE(reader.take().keepAlive);
}

TEST(HttpRequestReaderTest, RefusesWhatIsTooLargeOrMalformed) {
    const QByteArray start = "GET / HTTP/1.1\r\n";
    for (const QByteArray &text : {
             QByteArray("hello\r\n\r\n"),
             QByteArray("GET http://elsewhere/ HTTP/1.1\r\n\r\n"),
             start + "no colon\r\n\r\n",
             start + "Content-Length: -1\r\n\r\n",
             start + "Content-Length: 2000000\r\n\r\n",
             start + "Transfer-Encoding: chunked\r\n\r\n",
             start + "X: " + QByteArray(70'000, 'x'),
         })
        EXPECT_EQ(HttpRequestReader().feed(text), HttpRequestReader::Progress::Refused) << text.left(60).constData();
}

} // namespace korvel::sim
