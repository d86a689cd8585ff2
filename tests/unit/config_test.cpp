#include "account/server_rules.h"
#include "app/automation_runs.h"
#include "app/launch_environment.h"
#include "app/model/automation.h"
#include "app/model/fixed_config.h"
#include "service/agent_config.h"
#include "support/fakes.h"

#include <pwd.h>
#include <unistd.h>

namespace korvel::test {
namespace {

LaunchEnvironment environment() {
    return {.preferredLanguages = {u"en-US"_s},
            .home = u"/Users/ann"_s,
            .hookPort = std::nullopt,
            .korvelHome = std::nullopt,
            .automation = std::nullopt};
}

TEST(FixedConfig, TextsFollowTheFirstPreferredLanguageAlone) {
    EXPECT_TRUE(prefersChinese({u"zh-Hans-CN"_s, u"en"_s}));
    EXPECT_TRUE(prefersChinese({u"ZH-TW"_s}));
    EXPECT_FALSE(prefersChinese({u"en-US"_s, u"zh-Hans"_s}));
    EXPECT_FALSE(prefersChinese({}));
}

TEST(FixedConfig, ServersAreToldTheLanguagesOfTheUserTheMostWantedFirst) {
    EXPECT_EQ(acceptLanguage({u"zh-Hans-CN"_s, u"en-CN"_s}), "zh-Hans-CN, en-CN;q=0.9");
    EXPECT_EQ(acceptLanguage({u"C"_s, u"de"_s, u"DE"_s, u"fr\r\nX: y"_s, u"-"_s, u""_s, u"日本"_s, u"en"_s}),
              "de, en;q=0.9");
    EXPECT_EQ(acceptLanguage({}), "");
    QStringList many;
    for (char c = 'a'; c <= 'z'; ++c)
        many.append(u"x"_s + QLatin1Char(c));
    EXPECT_TRUE(acceptLanguage(many).endsWith(", xj;q=0.1"));
}

TEST(FixedConfig, TheEditionChoosesServerAndPagesButNotTheLanguage) {
    const FixedConfig cn = makeFixedConfig(testDeployment(u"cn"_s), environment());
    EXPECT_TRUE(cn.IS_CN);
    EXPECT_EQ(cn.SITE_URL, u"https://site.example/zh"_s);
    EXPECT_EQ(cn.TERMS_URL, u"https://site.example/cn/terms"_s);
    EXPECT_FALSE(cn.ZH);

    const FixedConfig intl = makeFixedConfig(testDeployment(u"intl"_s), environment());
    EXPECT_FALSE(intl.IS_CN);
    EXPECT_EQ(intl.DEFAULT_SERVER, u"intl.example:443"_s);
    EXPECT_EQ(intl.SITE_URL, u"https://site.example/en"_s);
}

TEST(FixedConfig, EnvironmentValuesAreTakenAsTheyStand) {
    LaunchEnvironment e = environment();
    const FixedConfig defaults = makeFixedConfig(testDeployment(), e);
    EXPECT_EQ(defaults.AGENT_LOCAL, u"http://127.0.0.1:8790"_s);
    EXPECT_EQ(defaults.KORVEL_HOME, u"/Users/ann/.korvel"_s);

    e.hookPort = u""_s;
    e.korvelHome = u"/data"_s;
    const FixedConfig set = makeFixedConfig(testDeployment(), e);
    EXPECT_EQ(set.AGENT_LOCAL, u"http://127.0.0.1:"_s);
    EXPECT_EQ(set.KORVEL_HOME, u"/data"_s);

    e.korvelHome = u""_s;
    const FixedConfig empty = makeFixedConfig(testDeployment(), e);
    EXPECT_EQ(makePaths(empty, e.home, 501).agentCfg, u"agent.json"_s); // in the current folder
    EXPECT_EQ(makePaths(set, e.home, 501).agentCfg, u"/data/agent.json"_s);
}

TEST(Paths, AreThoseThatTheSystemTheAgentAndTheUserKnow) {
    const Paths paths = makePaths(makeFixedConfig(testDeployment(), environment()), u"/Users/ann"_s, 501);
    EXPECT_EQ(paths.agentPlist, u"/Users/ann/Library/LaunchAgents/com.korvel.agent.plist"_s);
    EXPECT_EQ(paths.trayPlist, u"/Users/ann/Library/LaunchAgents/com.korvel.tray.plist"_s);
    EXPECT_EQ(paths.agentCfg, u"/Users/ann/.korvel/agent.json"_s);
    EXPECT_EQ(paths.logFile, u"/Users/ann/Library/Logs/korvel-agent.log"_s);
    EXPECT_EQ(paths.trayLog, u"/Users/ann/Library/Logs/korvel-tray.log"_s);
    EXPECT_EQ(paths.updateDir, u"/Users/ann/Library/Caches/Korvel/update"_s);
}

TEST(FixedConfig, WithoutHomeTheUsersRecordCounts) {
    const QByteArray before = qgetenv("HOME");
    qunsetenv("HOME");
    const QString home = readLaunchEnvironment().home;
    qputenv("HOME", before);
    EXPECT_EQ(home, QFile::decodeName(::getpwuid(::getuid())->pw_dir));
}

TEST(ServerRules, ATypedTextBecomesHostAndPortOrNothing) {
    const std::pair<QString, QString> addresses[] = {
        {u"  HTTPS://Relay.Example:8443/ \n"_s, u"Relay.Example:8443"_s},
        {u"relay.example"_s, u"relay.example:443"_s},
        {u"Http://host///"_s, u"host:443"_s},
        {u"relay.example:+0443"_s, u"relay.example:443"_s},
        {QString(253, u'a'), QString(253, u'a') + u":443"_s},
    };
    for (const auto &[typed, address] : addresses)
        EXPECT_EQ(normalizeServer(typed), address) << typed.toStdString();
    for (const QString &refused :
         {QString(254, u'a'), u"relay.example:"_s, u"relay.example:0"_s, u"relay.example:70000"_s,
          u"relay.example:99999999999999999999"_s, u"relay.example: 443"_s, u"[::1]:443"_s, u"relay.example/path"_s,
          u"user@relay.example"_s, u"-relay"_s, u"http://https://host"_s, u""_s})
        EXPECT_EQ(normalizeServer(refused), std::nullopt) << refused.toStdString();
}

TEST(ServerRules, AServerOfAnotherEditionIsForeignAndIgnored) {
    const TestHome home;
    EXPECT_TRUE(isForeignServer(home.fixed, u"INTL.example:443"_s));
    EXPECT_FALSE(isForeignServer(home.fixed, u"cn.example:443"_s));
    EXPECT_FALSE(isForeignServer(home.fixed, u"own.example:443"_s));

    const auto serverWith = [&](const QJsonValue &stored) { return serverOf(home.fixed, {{u"server"_s, stored}}); };
    EXPECT_EQ(serverWith(u"Own.example"_s), u"Own.example:443"_s);
    EXPECT_EQ(serverWith(u"intl.example"_s), home.fixed.DEFAULT_SERVER);
    EXPECT_EQ(serverWith(u"not a server"_s), home.fixed.DEFAULT_SERVER);
    EXPECT_EQ(serverWith(443), home.fixed.DEFAULT_SERVER);
}

TEST(ServerRules, AMacIsBoundByANonEmptyTokenText) {
    EXPECT_TRUE(bound(object(R"({"agentToken":"t"})")));
    for (const char *unbound : {R"({"agentToken":""})", R"({"agentToken":7})", "{}"})
        EXPECT_FALSE(bound(object(unbound))) << unbound;
}

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
