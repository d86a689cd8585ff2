#include "service/agent_config.h"

#include "platform/private_file.h"

#include <QJsonDocument>

namespace korvel {

namespace {
constexpr qint64 MAX_CONFIG_BYTES = 1 << 20;
}

QJsonObject AgentConfig::readCfg() const {
    const auto bytes = readRegularFile(paths.agentCfg, MAX_CONFIG_BYTES);
    return bytes ? QJsonDocument::fromJson(*bytes).object() : QJsonObject();
}

void AgentConfig::writeCfg(const QJsonObject &cfg) const {
    // QJsonObject keeps its keys sorted, so the indented form is stable.
    if (makePrivateFolder(paths.cfgDir))
        replacePrivateFile(paths.agentCfg, QJsonDocument(cfg).toJson(QJsonDocument::Indented));
}

QString cfgText(const QJsonObject &cfg, QStringView key) { return cfg.value(key).toString(); }

} // namespace korvel
