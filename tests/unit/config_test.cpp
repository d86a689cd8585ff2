#include "account/server_rules.h"
#include "app/automation_runs.h"
#include "app/launch_environment.h"
#include "app/model/automation.h"
#include "service/agent_config.h"
#include "support/fakes.h"

#include <pwd.h>
#include <unistd.h>

namespace korvel::test {
namespace {

TEST(FixedConfig, TextsAndRequestsFollowTheUsersLanguages) {
    EXPECT_TRUE(prefersChinese({u"ZH-Hans-CN"_s, u"en"_s}));
    EXPECT_FALSE(prefersChinese({u"en-US"_s, u"zh-Hans"_s}));
    EXPECT_EQ(acceptLanguage({u"zh-Hans-CN"_s, u"en-CN"_s}), "zh-Hans-CN, en-CN;q=0.9");
    EXPECT_EQ(acceptLanguage({u"C"_s, u"de"_s, u"DE"_s, u"fr\r\nX: y"_s, u"-"_s, u""_s, u"日本"_s, u"français"_s,
                              u"aa-"_s + QString(33, u'a'), u"en"_s}),
              "de, en;q=0.9");
    QStringList many;
    for (char c = 'a'; c <= 'z'; ++c)
        many.append(u"x"_s + QLatin1Char(c));
    EXPECT_TRUE(acceptLanguage(many).endsWith(", xj;q=0.1"));
}

TEST(FixedConfig, FollowsTheEditionAndTheEnvironment) {
    EXPECT_EQ(testConfig(u"cn"_s).SITE_URL, u"https://site.example/zh"_s);
    EXPECT_EQ(testConfig(u"intl"_s).SITE_URL, u"https://site.example/en"_s);
    EXPECT_FALSE(testConfig(u"cn"_s).ZH);
    LaunchEnvironment environment;
    environment.home = u"/Users/ann"_s;
    const auto config = [&] { return makeFixedConfig(testDeployment(), environment); };
    const Paths paths = makePaths(config(), environment.home, 501);
    EXPECT_EQ(config().AGENT_LOCAL, u"http://127.0.0.1:8790"_s);
    environment.hookPort = u""_s;
    EXPECT_EQ(config().AGENT_LOCAL, u"http://127.0.0.1:"_s);
    for (const auto &[folder, file] : {std::pair(u""_s, u"agent.json"_s), {u"/data"_s, u"/data/agent.json"_s}}) {
        environment.korvelHome = folder;
        EXPECT_EQ(makePaths(config(), environment.home, 501).agentCfg, file);
    }
    EXPECT_EQ(paths.agentPlist, u"/Users/ann/Library/LaunchAgents/com.korvel.agent.plist"_s);
    EXPECT_EQ(paths.trayPlist, u"/Users/ann/Library/LaunchAgents/com.korvel.tray.plist"_s);
    EXPECT_EQ(paths.agentCfg, u"/Users/ann/.korvel/agent.json"_s);
    EXPECT_EQ(paths.logFile, u"/Users/ann/Library/Logs/korvel-agent.log"_s);
    EXPECT_EQ(paths.trayLog, u"/Users/ann/Library/Logs/korvel-tray.log"_s);
    EXPECT_EQ(paths.updateDir, u"/Users/ann/Library/Caches/Korvel/update"_s);

    const QByteArray before = qgetenv("HOME");
    qunsetenv("HOME");
    EXPECT_EQ(readLaunchEnvironment().home, QFile::decodeName(::getpwuid(::getuid())->pw_dir));
    qputenv("HOME", before);
}

TEST(ServerRules, ATypedTextBecomesHostAndPortOrNothing) {
    const std::pair<QString, QString> addresses[] = {
        {u"  HTTPS://Relay.Example:8443/ \n"_s, u"Relay.Example:8443"_s},
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
    const FixedConfig fixed = testConfig(u"cn"_s);
    EXPECT_TRUE(isForeignServer(fixed, u"INTL.example:443"_s));
    EXPECT_FALSE(isForeignServer(fixed, u"cn.example:443"_s) || isForeignServer(fixed, u"own.example:443"_s));
    EXPECT_EQ(serverOf(fixed, u"Own.example"_s), u"Own.example:443"_s);
    for (const QString &stored : {u"intl.example"_s, u"not a server"_s, u""_s})
        EXPECT_EQ(serverOf(fixed, stored), fixed.DEFAULT_SERVER);
}

TEST(Automation, AModeNeedsItsArgumentsAndThePermission) {
    using Mode = AutomationMode;
    const std::tuple<QStringList, std::optional<QString>, std::optional<Mode>> cases[] = {
        {{u"--menu-dump"_s}, u"1"_s, Mode::MenuDump},
        {{u"--menu-dump"_s}, {}, {}},
        {{u"--menu-dump"_s}, u"true"_s, {}},
        {{u"x"_s, u"--menu-dump"_s}, u"1"_s, {}},
        {QStringList(), u"1"_s, {}},
        {{u"--login"_s}, u"1"_s, {}},
        {{u"--login"_s, u"ann"_s}, u"1"_s, Mode::Login},
        {{u"--e2ee-render"_s, u"pair"_s, u"o"_s}, u"1"_s, {}},
        {{u"--e2ee-render"_s, u"pair"_s, u"o"_s, u"{}"_s}, u"1"_s, Mode::E2eeRender},
        {{u"--login-render"_s, u"login"_s}, u"1"_s, {}},
        {{u"--login-render"_s, u"login"_s, u"o"_s}, u"1"_s, Mode::LoginRender},
    };
    for (const auto &[arguments, permission, mode] : cases)
        EXPECT_EQ(automationMode(QStringList{u"tray"_s} + arguments, permission), mode)
            << arguments.join(u' ').toStdString();
}

TEST(MenuDump, PrintsOneLineAnEntryFromTheRealFiles) {
    const TestHome home;
    const auto dump = [&](const QByteArray &health) { return menuDump(health, home.fixed, home.paths); };
    EXPECT_EQ(dump(""), R"(off Not signed in
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
    const auto lacking = dump(
        R"({"online":true,"perms":{"ok":false,"missing":["Screen","Mic"],"items":[{"name":"Screen","state":"denied"}]}})");
    EXPECT_TRUE(lacking->startsWith("off ● Connected · ann · 0 sessions · ⚠ 2 permissions missing\n"));
    EXPECT_TRUE(lacking->contains("off Permissions · 2 missing\non  ⚠ Screen")) << lacking->constData();
    EXPECT_TRUE(dump(R"({"ok":false,"online":true})")->startsWith("off ⏻ Sync paused"));
    // A text from outside adds no line.
    EXPECT_TRUE(dump(R"({"online":true,"account":"a\non  Fake\tb\u2028c"})")
                    ->startsWith("off ● Connected · a on Fake b c · 0 sessions\n"));
    EXPECT_EQ(dump("[1]"), std::nullopt);
    EXPECT_EQ(dump("{"), std::nullopt);
}

} // namespace
} // namespace korvel::test
