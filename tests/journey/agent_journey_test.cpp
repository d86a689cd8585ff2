#include "journey/journey.h"

namespace korvel::test {
namespace {

struct AgentJourney : Journey {
    AgentJourney() : Journey(20) {}
};

TEST_F(AgentJourney, ABrokenResponseCountsAsNoneAndBlocksNothing) {
    ASSERT_NO_FATAL_FAILURE(startConnected());
    for (const QString &mode : {u"silent"_s, u"garbage"_s, u"wrong-types"_s, u"huge"_s}) {
        SCOPED_TRACE(mode.toStdString());
        home.setScenario(agentFault(u"/health"_s, {{u"mode"_s, mode}}));
        ASSERT_TRUE(eventually([&] { return !item.icon.on; }));
        int turns = 0; // of the main thread
        const Timer beat = scheduler.every(50ms, [&turns] { ++turns; });
        ASSERT_TRUE(eventually([&] { return turns >= 5; }, 2s));
        home.setScenario({});
        ASSERT_TRUE(showsSoon(CONNECTED));
    }
}

TEST_F(AgentJourney, ThePageOfTheInternationalEditionSignsIn) {
    ASSERT_TRUE(home.startAccountServer() && home.installJobFile());
    fixed = makeFixedConfig(testDeployment(u"intl"_s), launchEnvironment);
    configure(u"server"_s, home.accountServer());
    launch();
    item.choose(Action::BrowserLogin); // starts the agent first
    ASSERT_TRUE(eventually([&] { return !desktop.opened.isEmpty(); }));
    ServerRequest form{.method = "POST", .url = desktop.opened.first()};
    form.headers = {{"Content-Type", "application/x-www-form-urlencoded"}};
    form.body = "username=sam%40example.com&password=open+sesame&action=sign-in";
    form.timeout = 10s;
    servers.send(form, Done<HttpReply>([](const Result<HttpReply> &) {}));
    ASSERT_TRUE(eventually([&] { return notices.last() == u"● Signed in as sam@example.com"; }));
    ASSERT_TRUE(showsSoon(u"● Connected · sam@example.com · 0 sessions"_s));
    EXPECT_EQ(home.accounts().liveCredentials().size(), 1);
}

} // namespace
} // namespace korvel::test
