#pragma once

#include <QString>

namespace korvel::sim {

/// The folder that replaces "/" for system tools.
QString simulatedRoot();

/// The paths of a home: the simulator's state and the files that the agent shares with the tray.
struct HomePaths {
    QString home; ///< The home directory, absolute.

    /// The paths of $HOME.
    static HomePaths ofThisProcess();

    /// A file of the simulator's state.
    QString state(const QString &name) const { return home + QStringLiteral("/.simulator/") + name; }
    QString requestLog() const { return state(QStringLiteral("requests.jsonl")); }
    QString toolLog() const { return state(QStringLiteral("tools.jsonl")); }
    QString agentLog() const { return state(QStringLiteral("agent.jsonl")); }
    QString openedLog() const { return state(QStringLiteral("opened.jsonl")); }
    QString serverLog() const { return state(QStringLiteral("server.jsonl")); }
    QString scenario() const { return state(QStringLiteral("scenario.json")); }
    QString installed() const { return state(QStringLiteral("installed.jsonl")); }
    QString ports() const { return state(QStringLiteral("ports.json")); }
    /// Locked by the account server while it runs.
    QString serverLock() const { return state(QStringLiteral("server")); }
    /// Locked by the test or the tour that owns the home, if there is one.
    QString ownerLock() const { return state(QStringLiteral("owner")); }
    /// Has a folder for each job label.
    QString jobs() const { return state(QStringLiteral("launchd")); }
    /// Replaces PRIVATE_TEMP.
    QString privateTemp() const { return state(QStringLiteral("private/tmp")); }

    QString bundle() const { return home + QStringLiteral("/Korvel.app"); }
    QString agentProgram() const { return bundle() + QStringLiteral("/Contents/Resources/korvel-agent"); }
    QString jobFile() const { return home + QStringLiteral("/Library/LaunchAgents/com.korvel.agent.plist"); }
    QString agentOutput() const { return home + QStringLiteral("/Library/Logs/korvel-agent.log"); }
};

/// The Mac's folder for temporary files.
inline const QString PRIVATE_TEMP = QStringLiteral("/private/tmp");

inline const QString AGENT_LABEL = QStringLiteral("com.korvel.agent");

} // namespace korvel::sim
