#pragma once

#include "app/model/fixed_config.h"

#include <QString>

namespace korvel {

/// Where the files lie that the tray reads and writes, settled once. Absolute paths, but for those in a configuration
/// folder that the environment names otherwise.
struct Paths {
    quint32 uid = 0;    ///< User id of this process.
    QString agentPlist; ///< The agent's launchd job file; that it exists means that the agent is installed.
    QString trayPlist;  ///< The tray's own login item.
    QString cfgDir;
    QString agentCfg;  ///< The agent's configuration file.
    QString logFile;   ///< The agent's log.
    QString updateDir; ///< Private cache of downloaded packages.
    QString turnFile;  ///< Locked by an instance of the tray while it starts.
    QString trayLog;   ///< The tray's standard error when launchd starts it.
};

Paths makePaths(const FixedConfig &config, const QString &home, quint32 uid);

/// Whether the agent's job file exists, which is what "the agent is installed" means everywhere.
bool plistExists(const Paths &paths);

} // namespace korvel
