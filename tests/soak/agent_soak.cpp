#include "account/browser_login.h"
#include "e2ee/requests.h"
#include "journey/journey.h"
#include "journey/listener.h"

#include <QRandomGenerator>

namespace korvel::test {
namespace {

/// A toggle runs at most seven commands one after the other, and each has 30 s.
constexpr auto TOGGLE_TIMEOUT = std::chrono::seconds(240);

struct HangSoak : Journey {
    void behave(const QJsonObject &launchctl) { home.setScenario({{u"launchctl"_s, launchctl}}); }
    /// Toggles until the tray shows this line; a toggle whose command hung may have changed nothing.
    void toggleTo(const QString &line) {
        for (int toggles = 0; toggles < 2 && item.statusLine() != line; ++toggles) {
            item.choose(Action::MenuToggle);
            ASSERT_TRUE(tray->currentState().service.busy);
            ASSERT_TRUE(eventually([this] { return !tray->currentState().service.busy; }, TOGGLE_TIMEOUT));
            behave({});
            eventually([&] { return item.statusLine() == line; }, std::chrono::seconds(5));
        }
        ASSERT_TRUE(showsSoon(line));
    }
};

TEST_F(HangSoak, WhicheverSubcommandHangsTheToggleEndsAndTheNextOneWorks) {
    const QJsonObject hangs{{u"delayMs"_s, 600'000}}, fails{{u"status"_s, 5}};
    const QString paused = u"⏻ Sync paused · ann"_s;
    const std::pair<QString, QString> toggles[] = {
        {u"bootout"_s, paused},      {u"disable"_s, paused},      {u"print"_s, paused},    {u"enable"_s, CONNECTED},
        {u"bootstrap"_s, CONNECTED}, {u"kickstart"_s, CONNECTED}, {u"print"_s, CONNECTED},
    };
    ASSERT_NO_FATAL_FAILURE(startConnected());
    for (const auto &[subcommand, line] : toggles) {
        SCOPED_TRACE((subcommand + u' ' + line).toStdString());
        ASSERT_NO_FATAL_FAILURE(toggleTo(line == paused ? CONNECTED : paused));
        behave({{u"bootstrap"_s, subcommand == u"kickstart" ? fails : QJsonObject()}, {subcommand, hangs}});
        ASSERT_NO_FATAL_FAILURE(toggleTo(line));
    }
}

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
