#pragma once

#include "simulator/encryption.h"
#include "simulator/home_paths.h"
#include "simulator/permission_control.h"
#include "simulator/server_accounts.h"
#include "simulator/server_updates.h"

#include <QJsonObject>
#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace korvel::sim {

// A home directory with a Mac in miniature in it: launchd jobs, the agent, the stand-in tools and the logs of what they
// were asked. docs/simulator.md lists the scenario's keys and the logs' fields. An object of this class owns nothing:
// any number, in any process, may look at the same home.
//
// Nothing here needs an event loop, and nothing waits longer than some seconds. Several homes may be in use at once.
class Home {
public:
    // `directory` should exist.
    explicit Home(const QString &directory);

    // The home directory, absolute and without symbolic links.
    QString path() const { return paths.home; }
    // ~/.korvel/agent.json
    QString configPath() const;
    // ~/Library/LaunchAgents/com.korvel.agent.plist
    QString jobFilePath() const { return paths.jobFile(); }
    // ~/Library/Logs/korvel-agent.log
    QString logPath() const { return paths.agentOutput(); }
    // The port of the agent of this home on 127.0.0.1: the one reserved for it, else KORVEL_HOOK_PORT, else 8790.
    int port() const;
    // This process's environment with HOME, KORVEL_HOOK_PORT and SSL_CERT_FILE set for this home, and KORVEL_HOME,
    // KORVEL_AGENT_BIN and KORVEL_TRAY_AUTOMATION removed.
    QProcessEnvironment environment() const;

    // Replaces the scenario; faults with "times" count anew. False when it cannot be written.
    bool setScenario(const QJsonObject &scenario);
    // Applies an RFC 7396 merge patch to the scenario; faults with "times" count anew.
    bool changeScenario(const QJsonObject &patch);
    // The scenario in force; empty when none was set.
    QJsonObject scenario() const;

    // Writes agentToken, agentId, username and loginName into agent.json; other keys stay. An agent that already runs
    // goes online without a restart; its encryption starts over. False when the file cannot be written or holds
    // something else than an object.
    bool signIn(const QString &account);
    // Removes those four keys; others stay.
    bool signOut();
    // The account in agent.json; empty when nobody is signed in.
    QString account() const;

    // The encryption as the phone and the account see and change it.
    Encryption encryption() const;
    // The privacy permissions of this Mac's agent, as the user sets them.
    PermissionControl permissions() const;

    // Starts the account server, and waits until it serves; it ends with the home. True when it runs.
    bool startAccountServer();
    // True when it no longer runs.
    bool stopAccountServer();
    // Its address, running or not: "localhost:PORT".
    QString accountServer() const;
    // The certificate, as PEM, of the authority that the server's certificate is signed by. Made when it is first asked
    // for.
    QString authorityFile() const;
    // What the account server knows, and what the user does there.
    ServerAccounts accounts() const;
    // The updates that it offers.
    ServerUpdates updates() const;

    // Writes the agent's job file without loading the job, and puts the agent where the job expects it.
    bool installJobFile();
    // Puts Korvel.app into the home, with the given tray program and the agent in it, and returns the tray's path
    // inside the bundle. Empty on failure.
    QString assembleBundle(const QString &trayProgram);
    // The agent inside the home's Korvel.app; there once assembleBundle() or installJobFile() was called.
    QString agentProgram() const { return paths.agentProgram(); }
    // Runs the stand-in launchctl and returns its exit status.
    int launchctl(const QStringList &arguments);
    // The launchd domain of this user, gui/UID, and the agent job's service target in it.
    static QString domain();
    static QString agentTarget();

    // Requests that the agent's HTTP interface received, oldest first.
    QList<QJsonObject> requests() const;
    // Requests that the account server received, oldest first.
    QList<QJsonObject> serverRequests() const;
    // Calls of the stand-in tools, in the order of their ends.
    QList<QJsonObject> toolCalls() const;
    // Calls of the agent's command line.
    QList<QJsonObject> agentCalls() const;
    // What was opened through the stand-in of open.
    QStringList opened() const;
    // Packages that the stand-in of installer installed, in that order: "time" (ms), "version", "sha256".
    QList<QJsonObject> installedPackages() const;

    // Process id of the agent that launchd runs here; 0 when none runs.
    qint64 agentPid() const;
    // Sends a signal to that process. False when none runs.
    bool killAgent(int signal);
    // Boots out every job of this home and ends the account server and whatever else of the simulator runs in it; no
    // scenario prevents it. Whoever starts such programs, the tray above all, must have ended before. True when no
    // process is left.
    bool shutDown();

protected:
    HomePaths paths;

private:
    bool placeAgent() const;
};

} // namespace korvel::sim
