#include "service/agent_config.h"

#include "base/log.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <utility>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr qint64 MAX_CONFIG_BYTES = 1 << 20;
constexpr int MAX_REREADS = 5;
constexpr milliseconds REREAD_INTERVAL = 100ms;

/// Whether the system denied the tray what any read needs, which says nothing about the file.
bool isShortage(const std::error_code &error) {
    return error == std::errc::too_many_files_open || error == std::errc::too_many_files_open_in_system ||
           error == std::errc::not_enough_memory;
}

} // namespace

AgentCfg AgentConfig::readCfg() const {
    // Taken before reading: if the file changes in between, the next stamp differs.
    const std::optional<FileStamp> stamp = stampOf(encodedPath);
    if (stamp && stamp == readAt)
        return lastRead;
    std::error_code unreadable;
    const auto bytes = readRegularFile(paths.agentCfg, MAX_CONFIG_BYTES, &unreadable);
    if (stamp && isShortage(unreadable))
        return lastRead;
    const QJsonObject cfg = bytes ? QJsonDocument::fromJson(*bytes).object() : QJsonObject();
    lastRead = {.agentToken = cfg.value(u"agentToken").toString(),
                .localToken = cfg.value(u"localToken").toString(),
                .server = cfg.value(u"server").toString(),
                .username = cfg.value(u"username").toString()};
    // A failed read may succeed later although the file is unchanged.
    readAt = bytes && stamp && stamp->isSettled(wallNow()) ? stamp : std::nullopt;
    return lastRead;
}

bool AgentConfig::writeCfg(const QJsonObject &cfg) const { return succeeded(writeBy(replacePrivateFile, cfg)); }

bool AgentConfig::changeCfg(const std::function<void(QJsonObject &cfg)> &change) const {
    return succeeded(changeBy(replacePrivateFile, change));
}

bool AgentConfig::canChangeCfg(const std::function<void(QJsonObject &cfg)> &change) const {
    return succeeded(changeBy(tryPrivateFile, change));
}

bool AgentConfig::isHalfWritten() const {
    const auto bytes = readRegularFile(paths.agentCfg, MAX_CONFIG_BYTES);
    return bytes && !QJsonDocument::fromJson(*bytes).isObject();
}

std::error_code AgentConfig::writeBy(Put put, const QJsonObject &cfg) const {
    // QJsonObject sorts its keys, so the output is stable.
    const QByteArray text = QJsonDocument(cfg).toJson(QJsonDocument::Indented);
    // A file too large to read would never be replaced, because changeBy() refuses to.
    return text.size() > MAX_CONFIG_BYTES ? std::make_error_code(std::errc::file_too_large) : put(paths.agentCfg, text);
}

std::error_code AgentConfig::changeBy(Put put, const std::function<void(QJsonObject &cfg)> &change) const {
    std::error_code unreadable;
    const auto bytes = readRegularFile(paths.agentCfg, MAX_CONFIG_BYTES, &unreadable);
    if (!bytes && QFileInfo::exists(paths.agentCfg))
        return unreadable;
    QJsonObject cfg = bytes ? QJsonDocument::fromJson(*bytes).object() : QJsonObject();
    change(cfg);
    return writeBy(put, cfg);
}

bool AgentConfig::succeeded(const std::error_code &error) const {
    if (error)
        log(u"[tray] %1: %2"_s.arg(paths.agentCfg, QString::fromLocal8Bit(error.message())));
    return !error;
}

ConfigWaiter::ConfigWaiter(const AgentConfig &c, Scheduler &s) : config(c), scheduler(s) {}

void ConfigWaiter::whenWhole(std::function<void()> then) {
    waiting.push_back(std::move(then));
    if (waiting.size() == 1)
        readWhenWhole(MAX_REREADS);
}

void ConfigWaiter::readWhenWhole(int rereads) {
    if (rereads > 0 && config.isHalfWritten()) {
        nextRead = scheduler.after(REREAD_INTERVAL, [this, rereads] { readWhenWhole(rereads - 1); });
        return;
    }
    for (const auto &then : std::exchange(waiting, {}))
        then();
}

} // namespace korvel
