#include "journey/journey.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct PermissionSoak : Journey {
    PermissionSoak() : Journey(1) {}
};

TEST_F(PermissionSoak, ARequestThatTheUserLeavesOpenForAHundredSecondsIsAnsweredInTheEnd) {
    home.setScenario({{u"permissions"_s, QJsonObject{{u"start"_s, u"fresh"_s}, {u"promptMs"_s, 100'000}}}});
    installAndSignIn();
    for (const QString &name : home.permissions().names().mid(1)) // one prompt is left
        ASSERT_TRUE(home.permissions().grant(name));
    launch();
    ASSERT_TRUE(showsSoon(u"● Connected · ann · 0 sessions · ⚠ 1 permission missing"_s));
    item.choose(Action::AskPerms);
    ASSERT_TRUE(eventually([&] { return requestsTo(u"/perms/request"_s) == 1; }));
    const int polls = requestsTo(u"/health"_s);
    ASSERT_TRUE(eventually([&] { return notices.last() == u"✓ All permissions granted"; }, std::chrono::seconds(120)));
    EXPECT_GE(requestsTo(u"/health"_s), polls + 32);
    EXPECT_EQ(requestsTo(u"/perms/request"_s), 1);
}

} // namespace
} // namespace korvel::test
