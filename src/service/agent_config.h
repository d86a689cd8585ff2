#pragma once

#include "app/model/paths.h"
#include "base/private_file.h"

#include <QJsonObject>
#include <QString>
#include <ctime>
#include <functional>
#include <optional>
#include <system_error>

namespace korvel {

/// The configuration file that the tray and the agent share: one JSON object, read and written whole. A reading is
/// always of the file as it is now; it is only not read again while its stamp proves that nobody wrote to it. Keys that
/// a caller does not change survive because it reads, changes and writes the whole object. On the main thread only.
class AgentConfig {
public:
    using WallClock = std::function<std::time_t()>;
    explicit AgentConfig(
        const Paths &p, WallClock now = [] { return std::time(nullptr); })
        : paths(p), wallNow(std::move(now)) {}

    /// The object in the file; empty when it is missing, unreadable, not a regular file, over 1 MiB or not an object.
    QJsonObject readCfg() const;
    /// Replaces the file (mode 0600, folder 0700). False when it could not: the old file stays whole, and the log says
    /// why.
    bool writeCfg(const QJsonObject &cfg) const;
    /// Reads the object, lets `change` alter it and writes it back. False as above, and when a file is there that
    /// cannot be read: what it holds must not be lost. A file that holds no object counts as empty.
    bool changeCfg(const std::function<void(QJsonObject &cfg)> &change) const;
    /// Whether changeCfg() would succeed now, as far as that shows without changing the file; logs as it does.
    bool canChangeCfg(const std::function<void(QJsonObject &cfg)> &change) const;
    /// Whether the file can be read and holds no object: the agent may be in the middle of writing it.
    bool isHalfWritten() const;

private:
    using Put = std::error_code (*)(const QString &path, const QByteArray &content);
    std::error_code writeBy(Put put, const QJsonObject &cfg) const;
    std::error_code changeBy(Put put, const std::function<void(QJsonObject &cfg)> &change) const;
    bool succeeded(const std::error_code &error) const;

    const Paths &paths;
    const WallClock wallNow;
    mutable std::optional<FileStamp> readAt; ///< The state of the file that `content` is of.
    mutable QJsonObject content;
};

/// The text under `key`, or the empty text when it is absent or not a text.
QString cfgText(const QJsonObject &cfg, QStringView key);

/// Whether this Mac is bound to an account.
bool bound(const QJsonObject &cfg);

} // namespace korvel
