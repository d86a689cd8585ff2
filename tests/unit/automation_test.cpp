#include "app/automation.h"

#include "app/automation_runs.h"
#include "support/fakes.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

TEST(Automation, ASwitchCountsOnlyWithEnoughEntriesAndThePermission) {
    const QStringList dump{u"tray"_s, u"--menu-dump"_s};
    EXPECT_EQ(automationMode(dump, u"1"_s), AutomationMode::MenuDump);
    EXPECT_EQ(automationMode(dump, std::nullopt), std::nullopt);
    EXPECT_EQ(automationMode(dump, u"true"_s), std::nullopt);
    EXPECT_EQ(automationMode({u"tray"_s, u"--login"_s}, u"1"_s), std::nullopt);
    EXPECT_EQ(automationMode({u"tray"_s, u"--login"_s, u"ann"_s}, u"1"_s), AutomationMode::Login);
    EXPECT_EQ(automationMode({u"tray"_s, u"x"_s, u"--menu-dump"_s}, u"1"_s), std::nullopt);
    EXPECT_EQ(automationMode({u"tray"_s, u"--e2ee-render"_s, u"pair"_s, u"o"_s}, u"1"_s), std::nullopt);
    EXPECT_EQ(automationMode({u"tray"_s, u"--e2ee-render"_s, u"pair"_s, u"o"_s, u"{}"_s}, u"1"_s),
              AutomationMode::E2eeRender);
    EXPECT_EQ(automationMode({u"tray"_s, u"--login-render"_s, u"login"_s}, u"1"_s), std::nullopt);
    EXPECT_EQ(automationMode({u"tray"_s, u"--login-render"_s, u"login"_s, u"o"_s}, u"1"_s),
              AutomationMode::LoginRender);
    EXPECT_EQ(automationMode({u"tray"_s}, u"1"_s), std::nullopt);
}

TEST(MenuDump, PrintsOneLineAnEntryFromTheRealFiles) {
    const TestHome home;
    EXPECT_EQ(menuDump("", home.fixed, home.paths), R"(off Not signed in
---
on  Check for Updates… (1.2.3)
---
on  Repair Korvel
on  Sign In / Sign Up…
---
on  Quit Korvel
)");
    home.bind();
    home.installJobFile();
    const QByteArray dump =
        menuDump(
            R"({"online":true,"perms":{"ok":false,"missing":["Screen"],"items":[{"name":"Screen","state":"denied"}]}})",
            home.fixed, home.paths)
            .value_or(QByteArray());
    EXPECT_TRUE(dump.startsWith("off ● Connected · ann · 0 sessions · ⚠ 1 permission missing\n")) << dump.constData();
    EXPECT_TRUE(dump.contains("off Permissions · 1 missing\non  ⚠ Screen")) << dump.constData();
    EXPECT_TRUE(menuDump(R"({"ok":false,"online":true})", home.fixed, home.paths)->startsWith("off ⏻ Sync paused"));
}

TEST(MenuDump, ATextFromOutsideCannotAddALine) {
    const TestHome home;
    home.bind();
    home.installJobFile();
    const auto dump = menuDump(R"({"online":true,"account":"a\non  Fake\tb\u2028c"})", home.fixed, home.paths);
    EXPECT_TRUE(dump->startsWith("off ● Connected · a on Fake b c · 0 sessions\n")) << dump->constData();
    EXPECT_EQ(menuDump("[1]", home.fixed, home.paths), std::nullopt);
    EXPECT_EQ(menuDump("{", home.fixed, home.paths), std::nullopt);
}

} // namespace
} // namespace korvel::test
