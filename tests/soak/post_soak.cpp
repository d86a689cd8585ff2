#include "account/browser_login.h"
#include "e2ee/requests.h"
#include "journey/journey.h"

#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>

namespace korvel::test {
namespace {

constexpr int POSTS = 1000;

/// An agent that dies after it has read some part of each request.
struct DyingAgent {
    QTcpServer server;
    int connections = 0;

    explicit DyingAgent(QRandomGenerator &random) {
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, &random] {
            ++connections;
            QTcpSocket *socket = server.nextPendingConnection();
            const qint64 enough = random.bounded(300);
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, enough, dies = random.bounded(2) == 0] {
                if (socket->bytesAvailable() < enough && !socket->peek(4096).contains("\r\n\r\n"))
                    return;
                dies ? socket->abort() : socket->close();
            });
        });
    }
};

TEST(PostSoak, AnAgentThatDiesWhileReadingGetsEachPostAtMostOnce) {
    QRandomGenerator random(static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED")));
    DyingAgent agent(random);
    TestHome home;
    home.bind();
    const AgentConfig config(home.paths);
    FixedConfig fixed = home.fixed;
    fixed.AGENT_LOCAL = u"http://127.0.0.1:%1"_s.arg(agent.server.serverPort());
    LoopbackHttpClient http;
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
            ASSERT_TRUE(eventually([&outcomes] { return outcomes > 0; }));
            ASSERT_EQ(outcomes, 1);
            ASSERT_LE(agent.connections, i);
        }
        EXPECT_EQ(agent.connections, POSTS);
    }
}

} // namespace
} // namespace korvel::test
