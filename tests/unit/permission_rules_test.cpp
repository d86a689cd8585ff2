#include "permissions/permission_rules.h"

#include "support/fakes.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

TEST(PermissionRules, AnItemIsUnknownByItsFlagOrElseByItsState) {
    const auto unknown = [](const char *json) { return permUnknown(QJsonDocument::fromJson(json).object()); };
    EXPECT_TRUE(unknown(R"({"unknown":true,"state":"granted"})"));
    EXPECT_FALSE(unknown(R"({"unknown":false,"state":"notrunning"})"));
    EXPECT_TRUE(unknown(R"({"unknown":"no","state":"notrunning"})"));
    EXPECT_TRUE(unknown(R"({"state":"unknown-timeout"})"));
    EXPECT_FALSE(unknown(R"({"state":"denied"})"));
    EXPECT_FALSE(unknown("{}"));
}

TEST(PermissionRules, StatesAreWordedAndMissingNeedsBothSigns) {
    EXPECT_EQ(permStateText(u"denied"_s), u"Not allowed"_s);
    EXPECT_EQ(permStateText(u"undetermined"_s), u"Not requested"_s);
    EXPECT_EQ(permStateText(u"notrunning"_s), u"Not running, can't check"_s);
    EXPECT_EQ(permStateText(u"unknown-x"_s), u"Unknown"_s);
    EXPECT_FALSE(permissionsMissing({.permsOk = false}));
    EXPECT_FALSE(permissionsMissing({.permsMissing = {u"a"_s}}));
    EXPECT_TRUE(permissionsMissing({.permsOk = false, .permsMissing = {u"a"_s}}));
    const LanguageScope chinese(true);
    EXPECT_EQ(permStateText(u"notrunning"_s), u"未运行，暂时无法查看"_s);
    EXPECT_EQ(permHeadTitle(2), u"权限 · 缺少 2 项"_s);
}

} // namespace
} // namespace korvel::test
