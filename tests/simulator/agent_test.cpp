#include "home_fixture.h"

#include "simulator/files.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include <ranges>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

class AgentTest : public HomeTest {
protected:
    Run login(const QByteArray &request) { return run(home.agentProgram(), {u"login"_s, u"--stdin-json"_s}, request); }
    void setLogin(const QString &operation, const QJsonObject &entry) {
        home.setScenario({{u"login"_s, QJsonObject{{operation, entry}}}});
    }
    Run agent(const QString &command) { return run(home.agentProgram(), {command}); }
    // The command that was logged last with an exit status, that status, and what it said.
    QStringList lastInstallation() const {
        for (const QList<QJsonObject> calls = home.agentCalls(); const QJsonObject &call : calls | std::views::reverse)
            if (call.contains("status"_L1))
                return {call.value("arguments"_L1)[0].toString(), QString::number(call.value("status"_L1).toInt()),
                        call.value("error"_L1).toString()};
        return {};
    }
};

} // namespace

TEST_F(AgentTest, RunningMakesATokenAndKeepsWhatElseIsInTheConfiguration) {
    ASSERT_TRUE(startAgent());
    const QByteArray made = token();
    EXPECT_FALSE(made.isEmpty());
    EXPECT_EQ(config().value("username"_L1), QJsonValue(u"sam@example.com"_s));
    EXPECT_EQ(QFileInfo(home.configPath()).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_EQ(home.launchctl({u"kickstart"_s, u"-k"_s, target}), 0);
    EXPECT_TRUE(eventually([&] { return health().end == End::Answered; }));
    EXPECT_EQ(token(), made);
}

TEST_F(AgentTest, ConfigurationThatIsNoObjectIsLeftAsItIs) {
    const QByteArray broken = "{\"agentToken\": \"hal";
    ASSERT_TRUE(replaceFile(home.configPath(), broken));
    EXPECT_FALSE(home.signIn(u"kim"_s));
    ASSERT_TRUE(startAgent());
    QFile file(home.configPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), broken);
}

TEST_F(AgentTest, RefusingAgentExitsAndDyingAgentIsStartedAgain) {
    home.setScenario({{u"agent"_s, QJsonObject{{u"refuse"_s, true}}}});
    EXPECT_EQ(agent(u"run"_s).status, 1);
    home.setScenario(
        {{u"agent"_s, QJsonObject{{u"dieAfterMs"_s, 50}}}, {u"launchd"_s, QJsonObject{{u"throttleMs"_s, 10}}}});
    ASSERT_EQ(home.launchctl({u"bootstrap"_s, domain, home.jobFilePath()}), 0);
    EXPECT_TRUE(eventually([&] { return home.agentCalls().size() >= 4; })) << "restarted time and again";
}

TEST_F(AgentTest, SecondAgentOnTheSamePortGivesUp) {
    ASSERT_TRUE(startAgent());
    const Run second = agent(u"run"_s);
    EXPECT_EQ(second.status, 1);
    EXPECT_TRUE(second.error.contains("cannot listen"));
}

TEST_F(AgentTest, LoginPlaysTheEntryOfItsOperation) {
    setLogin(u"send-code"_s, {{u"reply"_s, QJsonObject{{u"ok"_s, false}, {u"error"_s, u"late"_s}}},
                              {u"noise"_s, QJsonArray{u"one"_s, u"{two"_s}},
                              {u"exit"_s, 7}});
    const Run coded = login(R"({"op":"send-code"})");
    EXPECT_EQ(coded.status, 7);
    EXPECT_EQ(coded.output, "one\n{two\n{\"error\":\"late\",\"ok\":false}\n");

    home.signOut();
    setLogin(u"*"_s, {{u"silent"_s, true}});
    EXPECT_EQ(login(R"({"op":"login","username":"sam@example.com","password":"open sesame"})").output, "");
    EXPECT_FALSE(config().contains("agentToken"_L1));
    setLogin(u"login"_s, {{u"reply"_s, QJsonObject{{u"ok"_s, true}, {u"user"_s, u"k*m"_s}}}});
    EXPECT_EQ(login(R"({"op":"login","username":"kim"})").output, "{\"ok\":true,\"user\":\"k*m\"}\n");
    EXPECT_EQ(config().value("username"_L1), QJsonValue(u"kim"_s)) << "a reply of the scenario binds as well";
    EXPECT_EQ(login("[1]").status, 1);
}

TEST_F(AgentTest, HangingLoginEndsWithItsHome) {
    setLogin(u"login"_s, {{u"hang"_s, true}, {u"noise"_s, QJsonArray{u"started"_s}}});
    QProcess process;
    process.setProcessEnvironment(home.environment());
    process.start(home.agentProgram(), {u"login"_s, u"--stdin-json"_s});
    process.write(R"({"op":"login"})");
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForReadyRead(20'000));
    EXPECT_TRUE(process.state() == QProcess::Running);
    EXPECT_TRUE(home.shutDown());
    EXPECT_TRUE(process.waitForFinished(20'000));
}

TEST_F(AgentTest, InstallServiceWritesTheJobFileAndLoadsTheJob) {
    ASSERT_TRUE(QFile::remove(home.jobFilePath()));
    home.launchctl({u"disable"_s, target});
    EXPECT_EQ(agent(u"install-hooks"_s).status, 0);
    EXPECT_EQ(home.agentPid(), 0) << "the hooks alone load nothing";
    EXPECT_EQ(agent(u"install-service"_s).status, 0);
    EXPECT_TRUE(eventually([&] { return health().end == End::Answered; })) << "on the port of this home";
    EXPECT_EQ(agent(u"install-service"_s).status, 0) << "installing again is fine";
    EXPECT_EQ(lastInstallation(), (QStringList{u"install-service"_s, u"0"_s, QString()}));
}

TEST_F(AgentTest, InstallationFailsAsTheScenarioSays) {
    ASSERT_TRUE(QFile::remove(home.jobFilePath()));
    home.setScenario({{u"installService"_s, QJsonObject{{u"status"_s, 3}, {u"stderr"_s, u"no room"_s}}},
                      {u"installHooks"_s, QJsonObject{{u"status"_s, 4}, {u"stderr"_s, u"no hooks"_s}}}});
    const Run service = agent(u"install-service"_s);
    EXPECT_EQ(service.status, 3);
    EXPECT_EQ(service.error, "no room");
    EXPECT_FALSE(QFile::exists(home.jobFilePath()));
    const Run hooks = agent(u"install-hooks"_s);
    EXPECT_EQ(hooks.status, 4);
    EXPECT_EQ(hooks.error, "no hooks");
    EXPECT_EQ(lastInstallation(), (QStringList{u"install-hooks"_s, u"4"_s, u"no hooks"_s}));
    home.changeScenario({{u"installService"_s, QJsonObject{{u"writes"_s, true}, {u"times"_s, 1}}}});
    EXPECT_EQ(agent(u"install-service"_s).status, 3);
    EXPECT_TRUE(QFile::exists(home.jobFilePath()));
    EXPECT_EQ(home.agentPid(), 0) << "what fails loads nothing";
    EXPECT_EQ(agent(u"install-service"_s).status, 0) << "the second time it works";
    EXPECT_NE(home.agentPid(), 0);
}

TEST_F(AgentTest, InstallServiceFailsWhenTheJobIsNotLoadedAndMayOnlyClaimSuccess) {
    const QJsonObject fails{{u"status"_s, 5}};
    home.setScenario({{u"launchctl"_s, QJsonObject{{u"bootstrap"_s, fails}}}});
    EXPECT_EQ(agent(u"install-service"_s).status, 1);
    EXPECT_TRUE(lastInstallation().value(2).contains(u"cannot load"));
    ASSERT_TRUE(QFile::remove(home.jobFilePath()));
    home.setScenario({{u"installService"_s, QJsonObject{{u"writes"_s, false}}}});
    EXPECT_EQ(agent(u"install-service"_s).status, 0);
    EXPECT_FALSE(QFile::exists(home.jobFilePath()));
}

} // namespace korvel::sim
