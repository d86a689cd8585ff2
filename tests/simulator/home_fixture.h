#pragma once

#include "simulator/home_paths.h"
#include "simulator/simulated_home.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace korvel::sim {

// Looks until `condition` holds; false when it does not within 20 seconds.
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

// How a raw exchange with the agent ended.
enum class End { Answered, Closed, Reset, Silent };

struct Exchange {
    QByteArray head;
    QByteArray body;
    End end = End::Silent;
};

// Sends one GET on a fresh connection, asking for it to be closed, and reads until the end, or until nothing came for
// `patienceMs`, or until `enough` bytes are there. An empty token sends no header.
Exchange get(int port, const QByteArray &path, const QByteArray &token, int patienceMs = 10'000,
             qsizetype enough = 1 << 20);

// The same with a POST of a body.
Exchange post(int port, const QByteArray &path, const QByteArray &token, const QByteArray &body,
              int patienceMs = 10'000);

// A home in a temporary folder, signed in, with its job file written.
class HomeTest : public testing::Test {
protected:
    HomeTest();

    // Loads the agent's job; true when the agent answers.
    bool startAgent(SimulatedHome &which);
    bool startAgent() { return startAgent(home); }
    // The local token in agent.json.
    QByteArray token() const;
    Exchange health(int patienceMs = 10'000) { return get(home.port(), "/health", token(), patienceMs); }
    QJsonObject config() const;

    // Runs a program in the home, with input, to its end.
    struct Run {
        int status = -1;
        QByteArray output;
        QByteArray error;
    };
    Run run(const QString &program, const QStringList &arguments, const QByteArray &input = {});

    const QString target = Home::agentTarget();
    const QString domain = Home::domain();
    QTemporaryDir folder;
    SimulatedHome home;
};

} // namespace korvel::sim
