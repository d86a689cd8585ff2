#pragma once

#include "app/model/fixed_config.h"

#include <QString>

namespace korvel {

/// Paths of the files that the tray reads and writes, set once. Absolute, unless the environment sets a relative
/// configuration folder.
struct Paths {
    quint32 uid = 0;    ///< User id of this process.
    QString agentPlist; ///< The agent's launchd job file. If it exists, the agent is installed.
    QString trayPlist;  ///< The tray's own login item.
    QString cfgDir;
    QString agentCfg;  ///< The agent's configuration file.
    QString logFile;   ///< The agent's log.
    QString updateDir; ///< Private cache of downloaded packages.
    QString turnFile;  ///< Locked by a tray instance during its start.
    QString trayLog;   ///< The tray's standard error when started by launchd.
};

Paths makePaths(const FixedConfig &config, const QString &home, quint32 uid);

/// Whether the agent's job file exists, which defines "installed" everywhere.
bool plistExists(const Paths &paths);

} // namespace korvel
