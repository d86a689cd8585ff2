#include "simulator/agent/agent_config.h"

#include "simulator/home/files.h"
#include "simulator/home/home_paths.h"

#include <QFileInfo>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace korvel::sim {

AgentConfig AgentConfig::ofThisProcess() {
    const QString folder = qEnvironmentVariable("KORVEL_HOME");
    return AgentConfig((folder.isEmpty() ? HomePaths::ofThisProcess().home + "/.korvel"_L1 : folder) +
                       "/agent.json"_L1);
}

QJsonObject AgentConfig::read() const { return readObject(path); }

bool AgentConfig::change(const QJsonObject &patch) const {
    const QJsonObject content = read();
    const bool isLost = content.isEmpty() && QFileInfo(path).size() > 2; // more than {}
    return !isLost && replaceFile(path, mergePatch(content, patch));
}

QString AgentConfig::ensureLocalToken() const {
    QString token = text("localToken"_L1);
    if (token.isEmpty()) {
        token = randomHex(32);
        change({{u"localToken"_s, token}});
    }
    return token;
}

} // namespace korvel::sim
