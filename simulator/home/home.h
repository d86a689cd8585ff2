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

/// A home directory with a Mac in miniature in it: launchd jobs, the agent, the simulated tools and the logs of their
/// calls. docs/simulator.md lists the scenario's keys and the logs' fields. An object of this class owns nothing: any
/// number, in any process, may use the same home. Needs no event loop.
class Home {
public:
    /// `directory` should exist.
    explicit Home(const QString &directory);

    /// The home directory, absolute and without symbolic links.
    QString path() const { return paths.home; }
    /// ~/.korvel/agent.json
    QString configPath() const { return paths.home + QStringLiteral("/.korvel/agent.json"); }
    /// The agent's job file.
    QString jobFilePath() const { return paths.jobFile(); }
    /// The port of the agent of this home on 127.0.0.1: the one reserved for it, else KORVEL_HOOK_PORT, else 8790.
    int port() const;
    /// This process's environment for programs of this home.
    QProcessEnvironment environment() const;

    /// Replaces the scenario; faults with "times" count anew. False when it cannot be written.
    bool setScenario(const QJsonObject &scenario);
    /// Applies an RFC 7396 merge patch to the scenario.
    bool changeScenario(const QJsonObject &patch);
    QJsonObject scenario() const;

    /// Writes a sign-in into agent.json; an agent that runs goes online without a restart, and its encryption starts
    /// over. False when the file cannot be written or holds something else than an object.
    bool signIn(const QString &account);
    bool signOut();
    /// The account in agent.json; empty when nobody is signed in.
    QString account() const;

    /// The encryption as the phone and the account see and change it.
    Encryption encryption() const;
    /// The permissions of this Mac's agent as the user sets them.
    Permissions permissions() const { return Permissions(paths); }
    /// What the account server knows, and what the user does there.
    Accounts accounts() const { return Accounts(paths); }
    ServerUpdates updates() const { return ServerUpdates{paths}; }

    /// Starts the account server, and waits until it serves; it ends with the home. True when it runs.
    bool startAccountServer();
    /// True when it no longer runs.
    bool stopAccountServer();
    /// Its address, running or not: "localhost:PORT".
    QString accountServer() const;
    /// The certificate, as PEM, of the authority that signs the server's certificate.
    static QString authorityFile();

    /// Writes the agent's job file without loading the job, and puts the agent where the job expects it.
    bool installJobFile();
    /// Puts Korvel.app into the home, with the given tray program and the agent in it, and returns the tray's path
    /// inside the bundle. Empty on failure.
    QString assembleBundle(const QString &trayProgram);
    /// The agent inside the home's Korvel.app; there after assembleBundle() or installJobFile().
    QString agentProgram() const { return paths.agentProgram(); }
    /// Runs the simulated launchctl and returns its exit status.
    int launchctl(const QStringList &arguments);
    /// The launchd domain of this user, gui/UID, and the agent job's target in it.
    static QString domain();
    static QString agentTarget() { return domain() + u'/' + AGENT_LABEL; }

    /// Requests that the agent and the account server received, calls of the simulated tools and of the agent's command
    /// line, oldest first.
    QList<QJsonObject> requests() const;
    QList<QJsonObject> serverRequests() const;
    QList<QJsonObject> toolCalls() const;
    QList<QJsonObject> agentCalls() const;
    /// The addresses that were opened.
    QStringList opened() const;
    /// Installed packages, oldest first: "time" (ms), "version", "sha256".
    QList<QJsonObject> installedPackages() const;

    /// Process id of the agent that launchd runs here; 0 when none runs.
    qint64 agentPid() const;
    /// Sends a signal to that process. False when none runs.
    bool killAgent(int signal);
    /// Boots out every job of this home and ends the account server and whatever else of the simulator runs in it. The
    /// tray must have ended before. True when no process is left.
    bool shutDown();

protected:
    HomePaths paths;

private:
    bool placeAgent() const;
};

} // namespace korvel::sim
