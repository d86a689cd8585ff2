#pragma once

#include "simulator/agent/encryption.h"
#include "simulator/agent/permissions.h"
#include "simulator/home/home_paths.h"
#include "simulator/server/accounts.h"
#include "simulator/server/update_offer.h"

#include <QJsonObject>
#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace korvel::sim {

/// A home directory with a simulated Mac: launchd jobs, the agent, the simulated tools and the logs of their calls.
/// docs/simulator.md lists the keys of the scenario and the fields of the logs. Objects hold no resource: any number,
/// in any process, may use the same home. Needs no event loop.
class Home {
public:
    explicit Home(const QString &directory);

    /// The home directory, absolute and without symbolic links.
    QString path() const { return paths.home; }
    /// ~/.korvel/agent.json
    QString configPath() const { return paths.home + QStringLiteral("/.korvel/agent.json"); }
    /// The agent's job file.
    QString jobFilePath() const { return paths.jobFile(); }
    /// The agent's port on 127.0.0.1: the one reserved for this home, else KORVEL_HOOK_PORT, else 8790.
    int port() const;
    /// The environment for programs of this home, based on this process's.
    QProcessEnvironment environment() const;

    /// Replaces the scenario and restarts the counts of "times". False if it cannot be written.
    bool setScenario(const QJsonObject &scenario);
    /// Applies a merge patch (RFC 7396) to the scenario.
    bool changeScenario(const QJsonObject &patch);
    QJsonObject scenario() const;

    /// Writes a sign-in into agent.json. A running agent goes online without a restart, and the encryption restarts.
    /// False if the file cannot be written or contains anything but an object.
    bool signIn(const QString &account);
    bool signOut();
    /// The account in agent.json; empty if nobody is signed in.
    QString account() const;

    /// The encryption, for the simulated phone and account.
    Encryption encryption() const;
    /// The agent's permissions, for the simulated user.
    Permissions permissions() const { return Permissions(paths); }
    /// The state of the account server, for the simulated user.
    Accounts accounts() const { return Accounts(paths); }
    ServerUpdates updates() const { return ServerUpdates{paths}; }

    /// Starts the account server and waits until it accepts connections. It ends with the home. True if it runs.
    bool startAccountServer();
    /// True once it has stopped.
    bool stopAccountServer();
    /// The address "localhost:PORT", whether or not the server runs.
    QString accountServer() const;
    /// The certificate of the test authority, as PEM file.
    static QString authorityFile();

    /// Writes the agent's job file and the program that it names, without loading the job.
    bool installJobFile();
    /// Assembles Korvel.app in the home, from the given tray program and the agent. Returns the tray's path in it;
    /// empty on failure.
    QString assembleBundle(const QString &trayProgram);
    /// The agent in the home's Korvel.app; exists after assembleBundle() or installJobFile().
    QString agentProgram() const { return paths.agentProgram(); }
    /// Runs the simulated launchctl and returns its exit status.
    int launchctl(const QStringList &arguments);
    /// The user's launchd domain, gui/UID, and the target of the agent's job in it.
    static QString domain();
    static QString agentTarget() { return domain() + u'/' + AGENT_LABEL; }

    /// Logs of the requests to the agent and to the account server, and of the calls of the agent's command line and
    /// of `open`, oldest first.
    QList<QJsonObject> requests() const;
    QList<QJsonObject> serverRequests() const;
    QList<QJsonObject> agentCalls() const;
    QStringList opened() const;
    /// Installed packages, oldest first: "time" (ms), "version", "sha256".
    QList<QJsonObject> installedPackages() const;

    /// Process id of the agent that launchd runs; 0 if there is none.
    qint64 agentPid() const;
    /// Sends a signal to the agent. False if it does not run.
    bool killAgent(int signal);
    /// Ends everything of the simulator in this home: tools, loaded jobs, the account server and other agents; by
    /// SIGTERM, and SIGKILL after 2 seconds. The tray must have ended before. True if no process is left.
    bool shutDown();

protected:
    HomePaths paths;

private:
    bool placeAgent() const;
};

} // namespace korvel::sim
