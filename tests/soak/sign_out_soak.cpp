#include "journey/journey.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// At the speed of the clock on the wall: what hangs, hangs until its real deadline.
struct SignOutSoak : Journey {
    SignOutSoak() : Journey(1) {}
};

TEST_F(SignOutSoak, EndsWithinItsLimitsWhenTheAgentTheServerAndTheServiceManagerHang) {
    ASSERT_TRUE(home.startAccountServer());
    installAndSignIn();
    configure(u"server"_s, home.accountServer());
    launch();
    ASSERT_TRUE(showsSoon(u"● Connected · ann · 0 sessions"_s));
    const QJsonObject silent{{u"mode"_s, u"silent"_s}};
    home.changeScenario({{u"faults"_s, QJsonObject{{u"/e2ee/logout"_s, silent}}},
                         {u"server"_s, QJsonObject{{u"faults"_s, QJsonObject{{u"*"_s, silent}}}}},
                         {u"launchctl"_s, QJsonObject{{u"bootout"_s, QJsonObject{{u"delayMs"_s, 15000}}}}}});
    QElapsedTimer clock;
    clock.start();
    item.choose(Action::LogoutDialog);
    alerts.answer(0);
    ASSERT_TRUE(eventually([&] { return notices.last() == u"⏻ Signed out"; }, std::chrono::seconds(90)));
    // The agent has 30 s, the server 15 s, the service manager 10 s.
    EXPECT_NEAR(static_cast<double>(clock.elapsed()) / 1000, 55, 3);
    EXPECT_EQ(item.statusLine(), u"Not signed in"_s);
    EXPECT_EQ(serverRequestsTo(u"/v1/agents/unbind"_s), 1);
}

} // namespace
} // namespace korvel::test
