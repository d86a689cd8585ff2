#include "service/agent_api.h"

#include "support/fakes.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct AgentApiTest : ::testing::Test {
    TestHome home;
    ScriptedHttp http;
    AgentConfig config{home.paths};
    AgentApi api{http, home.fixed, config};

    HttpRequest sent(const AgentRequest &request = {.path = u"/health"_s, .timeout = std::chrono::seconds(2)}) {
        api.send(request, Done<QJsonObject>([](Result<QJsonObject>) {}));
        return http.open.back().request;
    }
};

TEST_F(AgentApiTest, TheTokenIsReadAtTheMomentOfTheRequest) {
    EXPECT_TRUE(sent().headers.isEmpty());
    home.writeConfig(R"({"localToken":"one"})");
    EXPECT_EQ(sent().headers.value(0), std::make_pair(QByteArray("X-Korvel-Token"), QByteArray("one")));
    home.writeConfig(R"({"localToken":"two"})");
    EXPECT_EQ(sent().headers.value(0).second, "two");
    for (const char *unusable :
         {R"({"localToken":""})", R"({"localToken":5})", R"(["localToken"])", "{\"localToken\":\"o"}) {
        home.writeConfig(unusable);
        EXPECT_TRUE(sent().headers.isEmpty()) << unusable;
    }
}

TEST_F(AgentApiTest, ABodyGoesAsCompactJsonToTheLoopbackOnly) {
    const HttpRequest request = sent({.method = "POST",
                                      .path = u"/e2ee/reject"_s,
                                      .body = QJsonObject{{u"pendingId"_s, u"p 1"_s}},
                                      .timeout = std::chrono::seconds(60)});
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, u"http://127.0.0.1:8790/e2ee/reject"_s);
    EXPECT_EQ(request.body, R"({"pendingId":"p 1"})");
    EXPECT_TRUE(request.headers.contains(std::make_pair(QByteArray("Content-Type"), QByteArray("application/json"))));
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
    EXPECT_EQ(request.maxBytes, 512 << 10);
}

TEST_F(AgentApiTest, OnlyAJsonObjectIsAnAnswerWhateverTheStatus) {
    EXPECT_EQ(parseAgentReply({401, R"({"ok":false})"}).value().value(u"ok"), QJsonValue(false));
    const QByteArray deep = R"({"ok":true,"x":)" + QByteArray(100000, '[') + QByteArray(100000, ']') + '}';
    for (const QByteArray &body : {QByteArray("[1]"), QByteArray("<html>"), QByteArray(), QByteArray("{\"ok\":tr"),
                                   QByteArray("{\"ok\":true,\"a\":\"\xff\xfe\"}"), deep})
        EXPECT_FALSE(parseAgentReply({200, body}).ok()) << body.left(40).constData();
}

} // namespace
} // namespace korvel::test
