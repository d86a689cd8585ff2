#pragma once

#include <QString>

namespace korvel::sim {

// Where a home keeps the simulator's state and the files that the agent shares with the tray. No file is touched.
struct HomePaths {
    // The home directory, absolute.
    QString home;

    // The home that this process runs in: $HOME.
    static HomePaths ofThisProcess();

    QString state() const;        // ~/.simulator, which holds all that follows
    QString scenario() const;     // scenario.json
    QString requestLog() const;   // requests.jsonl
    QString toolLog() const;      // tools.jsonl
    QString agentLog() const;     // agent.jsonl
    QString openedLog() const;    // opened.jsonl
    QString encryption() const;   // e2ee.json: the encryption state
    QString permissions() const;  // permissions.json: the agent's privacy permissions
    QString installed() const;    // installed.json: the packages that were installed
    QString privateTemp() const;  // private/tmp/, which stands in for the folder of that name
    QString accounts() const;     // account.json: the account server's state
    QString serverLog() const;    // server.jsonl
    QString serverLock() const;   // server: locked by the account server while it runs
    QString authority() const;    // authority.pem: the certificate that the account server's is signed by
    QString authorityKey() const; // authority.key
    QString portFile() const;     // port: the agent's reserved port as decimal text
    QString serverPort() const;   // server-port: the same of the account server
    QString ownerLock() const;    // owner: locked by the process that holds the home, if one does
    QString turns() const;        // turns/: how often limited faults happened
    QString jobs() const;         // launchd/: one folder per job label
    QString bundle() const;       // ~/Korvel.app
    QString agentProgram() const; // the agent inside that bundle
    QString jobFile() const;      // ~/Library/LaunchAgents/com.korvel.agent.plist
    QString agentOutput() const;  // ~/Library/Logs/korvel-agent.log
};

// The Mac's folder for temporary files, which privateTemp() of a home stands in for.
inline const QString PRIVATE_TEMP = QStringLiteral("/private/tmp");

// The folder that stands in for "/" when system tools are run.
QString standInRoot();

// The label of the agent's job.
QString agentLabel();

} // namespace korvel::sim
