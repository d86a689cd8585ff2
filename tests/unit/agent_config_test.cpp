#include "service/agent_config.h"

#include "support/fakes.h"
#include "support/full_disk.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

mode_t modeOf(const QString &path) {
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 0777 : 0;
}

TEST(AgentConfig, WhatIsNoSmallJsonObjectReadsAsEmpty) {
    const TestHome home;
    const AgentConfig config(home.paths);
    EXPECT_TRUE(config.readCfg().isEmpty());
    for (const QByteArray &content : {QByteArray("[1,2]"), QByteArray("{\"agentToken\":\"t\""),
                                      QByteArray("\0\1\2\xff", 4), QByteArray(), QByteArray("\"text\"")}) {
        home.writeConfig(content);
        EXPECT_TRUE(config.readCfg().isEmpty());
    }
    home.writeConfig("{\"agentToken\":\"" + QByteArray(2 << 20, 'x') + "\"}");
    EXPECT_TRUE(config.readCfg().isEmpty());
    home.bind();
    EXPECT_EQ(cfgText(config.readCfg(), u"username"), u"ann"_s);
}

TEST(AgentConfig, WhatOthersWriteIsReadAtOnce) {
    const TestHome home;
    const AgentConfig config(home.paths);
    home.writeConfig(R"({"username":"ann"})");
    EXPECT_EQ(cfgText(config.readCfg(), u"username"), u"ann"_s);
    // In place, of the same size, and perhaps within one tick of the file system's clock.
    home.writeConfig(R"({"username":"bob"})");
    EXPECT_EQ(cfgText(config.readCfg(), u"username"), u"bob"_s);

    const AgentConfig anHourLater(home.paths, [] { return std::time(nullptr) + 3600; });
    for (int reading = 0; reading < 2; ++reading)
        EXPECT_EQ(cfgText(anHourLater.readCfg(), u"username"), u"bob"_s);
    replacePrivateFile(home.paths.agentCfg, R"({"username":"eve"})");
    EXPECT_EQ(cfgText(anHourLater.readCfg(), u"username"), u"eve"_s);
    QFile::remove(home.paths.agentCfg);
    EXPECT_TRUE(anHourLater.readCfg().isEmpty());
}

TEST(AgentConfig, AFolderOrAPipeInItsPlaceNeitherBlocksNorCounts) {
    const TestHome home;
    const AgentConfig config(home.paths);
    QDir().mkpath(home.paths.agentCfg);
    EXPECT_TRUE(config.readCfg().isEmpty());
    config.writeCfg({{u"a"_s, 1}});
    EXPECT_TRUE(QFileInfo(home.paths.agentCfg).isDir());
    QDir().rmdir(home.paths.agentCfg);
    ASSERT_EQ(::mkfifo(QFile::encodeName(home.paths.agentCfg).constData(), 0600), 0);
    EXPECT_TRUE(config.readCfg().isEmpty());
}

TEST(AgentConfig, AWriteTightensTheModeAndKeepsTheOtherKeys) {
    const TestHome home;
    const AgentConfig config(home.paths);
    config.writeCfg({{u"b"_s, 1}, {u"a"_s, u"x"_s}});
    EXPECT_EQ(modeOf(home.paths.cfgDir), 0700u);
    EXPECT_EQ(modeOf(home.paths.agentCfg), 0600u);

    home.writeConfig(R"({"localToken":"secret","server":"s"})");
    QFile::setPermissions(home.paths.agentCfg, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
    QJsonObject cfg = config.readCfg();
    cfg.insert(u"agentToken"_s, u"new"_s);
    config.writeCfg(cfg);
    EXPECT_EQ(modeOf(home.paths.agentCfg), 0600u);
    EXPECT_EQ(cfgText(config.readCfg(), u"localToken"), u"secret"_s);
    EXPECT_EQ(cfgText(config.readCfg(), u"agentToken"), u"new"_s);
}

TEST(AgentConfig, AFullDiskLeavesTheOldFileWholeAndNoRemains) {
    const TestHome home;
    const AgentConfig config(home.paths);
    home.bind();
    {
        const FullDisk full(100);
        config.writeCfg({{u"agentToken"_s, QString(500, u'x')}});
    }
    EXPECT_EQ(cfgText(config.readCfg(), u"agentToken"), u"t"_s);
    EXPECT_EQ(QDir(home.paths.cfgDir).entryList(QDir::Files | QDir::Hidden), QStringList{u"agent.json"_s});
}

TEST(AgentConfig, AFileBehindALinkIsReplacedWhereItLies) {
    const TestHome home;
    const AgentConfig config(home.paths);
    const QString real = home.home() + u"/elsewhere.json"_s;
    home.write(real, "{}");
    QDir().mkpath(home.paths.cfgDir);
    ASSERT_TRUE(QFile::link(real, home.paths.agentCfg));
    config.writeCfg({{u"a"_s, u"b"_s}});
    EXPECT_TRUE(QFileInfo(home.paths.agentCfg).isSymLink());
    EXPECT_EQ(cfgText(config.readCfg(), u"a"), u"b"_s);
    EXPECT_EQ(modeOf(real), 0600u);
}

} // namespace
} // namespace korvel::test
