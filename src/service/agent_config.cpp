#include "service/agent_config.h"

#include <QFileInfo>
#include <QJsonDocument>

namespace korvel {

namespace {
constexpr qint64 MAX_CONFIG_BYTES = 1 << 20;
}

QJsonObject AgentConfig::readCfg() const {
    // Taken before the reading: should the file change between the two, the next stamp differs.
    const std::optional<FileStamp> stamp = stampOf(paths.agentCfg);
    if (stamp && stamp == readAt)
        return content;
    const auto bytes = readRegularFile(paths.agentCfg, MAX_CONFIG_BYTES);
    content = bytes ? QJsonDocument::fromJson(*bytes).object() : QJsonObject();
    // A reading that failed may succeed without any change to the file.
    readAt = bytes && stamp && stamp->isSettled(wallNow()) ? stamp : std::nullopt;
    return content;
}

bool AgentConfig::writeCfg(const QJsonObject &cfg) const {
    // QJsonObject keeps its keys sorted, so the indented form is stable.
    const QByteArray text = QJsonDocument(cfg).toJson(QJsonDocument::Indented);
    // A file that could not be read again would never be replaced either.
    return text.size() <= MAX_CONFIG_BYTES && makePrivateFolder(paths.cfgDir) &&
           replacePrivateFile(paths.agentCfg, text);
}

bool AgentConfig::changeCfg(const std::function<void(QJsonObject &cfg)> &change) const {
    const auto bytes = readRegularFile(paths.agentCfg, MAX_CONFIG_BYTES);
    if (!bytes && QFileInfo::exists(paths.agentCfg))
        return false;
    QJsonObject cfg = bytes ? QJsonDocument::fromJson(*bytes).object() : QJsonObject();
    change(cfg);
    return writeCfg(cfg);
}

QString cfgText(const QJsonObject &cfg, QStringView key) { return cfg.value(key).toString(); }

} // namespace korvel
