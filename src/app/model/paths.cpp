#include "app/model/paths.h"

#include <QFile>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel {

Paths makePaths(const FixedConfig &config, const QString &home, quint32 uid) {
    const QString agents = inFolder(home, u"Library/LaunchAgents/"_s);
    const QString caches = inFolder(home, u"Library/Caches/Korvel/"_s);
    const QString logs = inFolder(home, u"Library/Logs/"_s);
    return {.uid = uid,
            .agentPlist = agents + config.AGENT_LABEL + u".plist"_s,
            .trayPlist = agents + u"com.korvel.tray.plist"_s,
            .cfgDir = config.KORVEL_HOME,
            .agentCfg = inFolder(config.KORVEL_HOME, u"agent.json"_s),
            .logFile = logs + u"korvel-agent.log"_s,
            .updateDir = caches + u"update"_s,
            .turnFile = caches + u"tray.lock"_s,
            .trayLog = logs + u"korvel-tray.log"_s};
}

// At every poll, so it must be cheap.
bool plistExists(const Paths &paths) { return ::access(QFile::encodeName(paths.agentPlist).constData(), F_OK) == 0; }

} // namespace korvel
