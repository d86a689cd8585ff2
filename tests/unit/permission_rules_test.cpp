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

} // namespace
} // namespace korvel::test
