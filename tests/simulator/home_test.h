#pragma once

#include "simulator/home/simulated_home.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

namespace korvel::sim {

/// Looks until `condition` holds; false when it does not within 20 seconds.
template <class Condition>
bool eventually(Condition condition) {
    const QDeadlineTimer deadline(20'000);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(5);
    }
    return true;
}

/// A home in a temporary folder, signed in, with its job file written.
struct HomeTest : testing::Test {
    HomeTest() {
        EXPECT_TRUE(home.signIn(QStringLiteral("sam@example.com")));
        EXPECT_TRUE(home.installJobFile());
    }
    /// Loads the agent's job; true when the agent runs.
    bool startAgent(SimulatedHome &which) {
        EXPECT_EQ(which.launchctl({QStringLiteral("bootstrap"), Home::domain(), which.jobFilePath()}), 0);
        return eventually([&] { return which.agentPid() != 0; });
    }

    struct Run {
        int status = -1;
        QByteArray output = {};
        QByteArray error = {};
    };
    /// Runs a program in the home to its end.
    Run run(const QString &program, const QStringList &arguments) {
        QProcess process;
        process.setProcessEnvironment(home.environment());
        process.start(program, arguments);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(20'000)) << qPrintable(program);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    QTemporaryDir folder;
    SimulatedHome home{folder.filePath(QStringLiteral("home"))};
};

} // namespace korvel::sim
