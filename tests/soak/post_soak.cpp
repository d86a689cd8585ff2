#include "account/browser_login.h"
#include "e2ee/requests.h"
#include "journey/journey.h"
#include "journey/listener.h"

#include <QRandomGenerator>

namespace korvel::test {
namespace {

constexpr int POSTS = 1000;

using PostSoak = Journey;

TEST_F(PostSoak, AnAgentThatDiesWhileReadingGetsEachPostAtMostOnce) {
    QRandomGenerator random(static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED")));
    Listener agent;
    agent.onRequest = [&random](QTcpSocket &socket) {
        random.bounded(2) ? socket.abort() : socket.disconnectFromHost();
    };
    fixed.AGENT_LOCAL = agent.url();
    const AgentConfig config(paths);
    AgentApi api(http, fixed, config);
    for (const AgentRequest &kind :
         {pairDeviceRequest(u"p1"_s, u"123456"_s), rejectDeviceRequest(u"p1"_s), renewCodeRequest(),
          dismissAlarmRequest(u"a1"_s), acceptResetRequest(), installSpeechRequest(), e2LogoutRequest(),
          authStartRequest(u"Mac"_s),
          AgentRequest{.method = "POST", .path = u"/perms/request"_s, .timeout = std::chrono::seconds(150)}}) {
        SCOPED_TRACE(kind.path.toStdString());
        agent.connections = 0;
        for (int i = 1; i <= POSTS; ++i) {
            int outcomes = 0;
            api.send(kind, [&outcomes](const Result<QJsonObject> &reply) {
                ++outcomes;
                EXPECT_FALSE(reply);
            });
            ASSERT_TRUE(eventually([&outcomes] { return outcomes == 1; }));
            ASSERT_LE(agent.connections, i);
        }
        EXPECT_EQ(agent.connections, POSTS);
    }
}

} // namespace
} // namespace korvel::test
