#include "simulator/home_paths.h"

#include <QDir>

namespace korvel::sim {

using namespace Qt::StringLiterals;

HomePaths HomePaths::ofThisProcess() { return {QDir::cleanPath(qEnvironmentVariable("HOME"))}; }

QString HomePaths::state() const { return home + "/.simulator"_L1; }
QString HomePaths::scenario() const { return state() + "/scenario.json"_L1; }
QString HomePaths::requestLog() const { return state() + "/requests.jsonl"_L1; }
QString HomePaths::toolLog() const { return state() + "/tools.jsonl"_L1; }
QString HomePaths::agentLog() const { return state() + "/agent.jsonl"_L1; }
QString HomePaths::openedLog() const { return state() + "/opened.jsonl"_L1; }
QString HomePaths::encryption() const { return state() + "/e2ee.json"_L1; }
QString HomePaths::permissions() const { return state() + "/permissions.json"_L1; }
QString HomePaths::installed() const { return state() + "/installed.json"_L1; }
QString HomePaths::privateTemp() const { return state() + PRIVATE_TEMP; }
QString HomePaths::accounts() const { return state() + "/account.json"_L1; }
QString HomePaths::serverLog() const { return state() + "/server.jsonl"_L1; }
QString HomePaths::serverLock() const { return state() + "/server"_L1; }
QString HomePaths::authority() const { return state() + "/authority.pem"_L1; }
QString HomePaths::authorityKey() const { return state() + "/authority.key"_L1; }
QString HomePaths::serverPort() const { return state() + "/server-port"_L1; }
QString HomePaths::portFile() const { return state() + "/port"_L1; }
QString HomePaths::ownerLock() const { return state() + "/owner"_L1; }
QString HomePaths::turns() const { return state() + "/turns"_L1; }
QString HomePaths::jobs() const { return state() + "/launchd"_L1; }
QString HomePaths::bundle() const { return home + "/Korvel.app"_L1; }
QString HomePaths::agentProgram() const { return bundle() + "/Contents/Resources/korvel-agent"_L1; }
QString HomePaths::jobFile() const { return home + "/Library/LaunchAgents/com.korvel.agent.plist"_L1; }
QString HomePaths::agentOutput() const { return home + "/Library/Logs/korvel-agent.log"_L1; }

QString standInRoot() { return QString::fromUtf8(KORVEL_STAND_IN_ROOT); }

QString agentLabel() { return u"com.korvel.agent"_s; }

} // namespace korvel::sim
