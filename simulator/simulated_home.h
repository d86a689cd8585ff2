#pragma once

#include <QJsonObject>
#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <memory>

namespace korvel::sim {

// A home directory with a Mac in miniature in it: launchd jobs, the agent, the stand-in tools and the logs of what they
// were asked. Journey tests and the tour make one, start the tray with environment(), and change the scenario while it
// runs. docs/simulator.md lists the scenario's keys.
//
// Nothing here needs an event loop and nothing waits longer than a few seconds. Several homes may be in use at once, in
// one process or in many.
class SimulatedHome {
public:
    // Creates `directory` (and its parents) where it is missing, and reserves a loopback port for the agent until
    // destruction. An existing home is taken over as it is, its scenario and logs included.
    explicit SimulatedHome(const QString &directory);
    // Calls shutDown(). The directory and its files stay.
    ~SimulatedHome();
    SimulatedHome(const SimulatedHome &) = delete;
    SimulatedHome &operator=(const SimulatedHome &) = delete;

    // The home directory, absolute and without symbolic links.
    QString path() const;
    // ~/.korvel/agent.json
    QString configPath() const;
    // ~/Library/LaunchAgents/com.korvel.agent.plist
    QString jobFilePath() const;
    // ~/Library/Logs/korvel-agent.log
    QString logPath() const;
    // The port that the agent of this home listens on (127.0.0.1). Nobody else is given it while this object lives.
    int port() const;
    // This process's environment with HOME and KORVEL_HOOK_PORT set for this home, and KORVEL_HOME, KORVEL_AGENT_BIN
    // and KORVEL_TRAY_AUTOMATION removed.
    QProcessEnvironment environment() const;

    // Replaces the scenario; faults with "times" count anew.
    void setScenario(const QJsonObject &scenario);
    // Applies an RFC 7396 merge patch to the scenario; faults with "times" count anew.
    void changeScenario(const QJsonObject &patch);
    // The scenario in force; empty when none was set.
    QJsonObject scenario() const;

    // Writes agentToken, agentId, username, loginName into agent.json; other keys stay. An agent that already runs
    // goes online without a restart.
    void signIn(const QString &account);
    // Removes those four keys; others stay.
    void signOut();

    // Writes the agent's job file without loading the job, and puts the agent program where the job expects it.
    void installJobFile();
    // Puts Korvel.app into the home, with the given tray program and the agent in it, and returns the tray's path
    // inside the bundle. Empty on failure.
    QString assembleBundle(const QString &trayProgram);
    // The agent program inside the home's Korvel.app; there once assembleBundle() or installJobFile() was called.
    QString agentProgram() const;
    // Runs a stand-in tool such as launchctl(QStringList{"print", target}) and returns its exit status.
    int launchctl(const QStringList &arguments);
    // The launchd domain of this user, gui/UID, and the agent job's service target in it.
    static QString domain();
    static QString agentTarget();

    // Requests that the agent's HTTP interface received, oldest first: time (ms since the epoch), method, path, token
    // ("right", "wrong", "absent"), contentType, body, connection, request (number on that connection), agent (pid).
    QList<QJsonObject> requests() const;
    // Calls of the stand-in tools: time, tool, arguments, status, user-visible error text.
    QList<QJsonObject> toolCalls() const;
    // Calls of the agent's command line: time, arguments, input (passwords as "***"), lang.
    QList<QJsonObject> agentCalls() const;
    // What was opened through the stand-in of open, in order.
    QStringList opened() const;

    // Process id of the agent that launchd runs here; 0 when none runs.
    qint64 agentPid() const;
    // Sends a signal to that process. False when none runs.
    bool killAgent(int signal);
    // Boots out every job of this home and ends whatever of the simulator still runs in it. No scenario prevents it.
    // True when no process is left.
    bool shutDown();

private:
    class PortReservation;
    QString home;
    std::unique_ptr<PortReservation> reservation;
};

} // namespace korvel::sim
