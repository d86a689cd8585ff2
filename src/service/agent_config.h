#pragma once

#include "app/model/paths.h"
#include "base/private_file.h"
#include "base/scheduler.h"

#include <QByteArray>
#include <QFile>
#include <QJsonObject>
#include <QString>
#include <ctime>
#include <functional>
#include <optional>
#include <system_error>
#include <vector>

namespace korvel {

/// The values of the configuration file that the tray reads; empty where a value is absent or not a string.
struct AgentCfg {
    QString agentToken; ///< The Mac's credential on the account server.
    QString localToken; ///< Shown to the agent with each request.
    QString server;     ///< As stored.
    QString username;

    /// Whether this Mac is bound to an account.
    bool bound() const { return !agentToken.isEmpty(); }
    bool operator==(const AgentCfg &) const = default;
};

/// The configuration file that the tray and the agent share: one JSON object. Reads always reflect the current file;
/// cached content is used only while the file's stamp proves that the file is unchanged. Reads and writes cover the
/// whole object, so keys that the tray does not know survive. Main thread only.
class AgentConfig {
public:
    using WallClock = std::function<std::time_t()>;
    explicit AgentConfig(
        const Paths &p, WallClock now = [] { return std::time(nullptr); })
        : paths(p), encodedPath(QFile::encodeName(p.agentCfg)), wallNow(std::move(now)) {}

    /// The values in the file; none when it is missing, unreadable, not a regular file, over 1 MiB or not an object.
    /// While the tray has no descriptor or memory to read with, the values last read.
    AgentCfg readCfg() const;
    /// Replaces the file atomically (mode 0600, folder 0700). On failure returns false, keeps the old file and logs the
    /// reason.
    bool writeCfg(const QJsonObject &cfg) const;
    /// Reads the object, applies `change` and writes it back. Fails as above, and also if an existing file cannot be
    /// read, because its content must not be lost. A file that holds no object counts as empty.
    bool changeCfg(const std::function<void(QJsonObject &cfg)> &change) const;
    /// Whether changeCfg() would succeed now, as far as can be checked without changing the file. Logs like
    /// changeCfg().
    bool canChangeCfg(const std::function<void(QJsonObject &cfg)> &change) const;
    /// Whether the file is readable but holds no object: the agent may be writing it.
    bool isHalfWritten() const;

private:
    using Put = std::error_code (*)(const QString &path, const QByteArray &content);
    std::error_code writeBy(Put put, const QJsonObject &cfg) const;
    std::error_code changeBy(Put put, const std::function<void(QJsonObject &cfg)> &change) const;
    bool succeeded(const std::error_code &error) const;

    const Paths &paths;
    const QByteArray encodedPath; ///< Each poll looks at the file several times.
    const WallClock wallNow;
    mutable std::optional<FileStamp> readAt; ///< Stamp of the file that `lastRead` comes from.
    mutable AgentCfg lastRead;
};

/// Delays changes to the agent configuration while the agent is writing it. A half-written file is read again for a
/// short time before it counts as empty.
class ConfigWaiter {
public:
    ConfigWaiter(const AgentConfig &config, Scheduler &scheduler);

    /// Calls `then` once the file is not half-written: usually at once, and after 0.5 s at the latest.
    void whenWhole(std::function<void()> then);

private:
    void readWhenWhole(int rereads);

    const AgentConfig &config;
    Scheduler &scheduler;
    std::vector<std::function<void()>> waiting;
    Timer nextRead;
};

} // namespace korvel
