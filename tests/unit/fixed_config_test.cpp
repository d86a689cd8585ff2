#include "app/fixed_config.h"

#include "support/fakes.h"

#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

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

} // namespace
} // namespace korvel::test
