// What a test or the tour leaves behind would run on in the developer's session.

#include "simulator/home_test.h"

#include "simulator/home/processes.h"

#include <QDir>
#include <sys/wait.h>
#include <unistd.h>

namespace korvel::sim {
namespace {

using namespace Qt::StringLiterals;

struct CleaningTest : HomeTest {
    const QString path = folder.filePath(u"other"_s);

    bool isLeft() const {
        return !eventually([&] { return processesOfHome(path).isEmpty(); });
    }
};

TEST_F(CleaningTest, ToolsAndShutDownTouchOnlyTheirOwnHome) {
    SimulatedHome other(path);
    ASSERT_TRUE(other.installJobFile());
    ASSERT_TRUE(startAgent(home) && startAgent(other));
    EXPECT_NE(home.port(), other.port());
    const qint64 otherAgent = other.agentPid();
    home.setScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 1'000'000}}}});
    const QStringList pattern{u"-f"_s, u"Korvel.app/Contents/Resources/korvel-agent"_s};
    EXPECT_EQ(run(simulatedRoot() + "/usr/bin/pkill"_L1, pattern).status, 0);
    EXPECT_TRUE(eventually([&] { return home.agentPid() == 0; }));
    EXPECT_TRUE(home.shutDown());
    EXPECT_EQ(other.agentPid(), otherAgent);
}

TEST_F(CleaningTest, TheJobsOfARemovedHomeEnd) {
    SimulatedHome other(path);
    ASSERT_TRUE(other.installJobFile() && startAgent(other));
    ASSERT_TRUE(eventually([&] { return QDir(path).removeRecursively(); })); // the agent may be writing
    EXPECT_FALSE(isLeft());
}

TEST_F(CleaningTest, TheJobsOfAHomeEndWhenItsOwnerIsKilled) {
    const pid_t owner = ::fork();
    if (owner == 0) {
        SimulatedHome orphaned(path);
        const bool loaded = orphaned.installJobFile() &&
                            orphaned.launchctl({u"bootstrap"_s, Home::domain(), orphaned.jobFilePath()}) == 0;
        ::_exit(loaded ? 0 : 1); // without destructors
    }
    int status = -1;
    ASSERT_EQ(::waitpid(owner, &status, 0), owner);
    ASSERT_EQ(status, 0);
    EXPECT_FALSE(isLeft());
}

} // namespace
} // namespace korvel::sim
