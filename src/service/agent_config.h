#pragma once

#include "app/paths.h"

#include <QJsonObject>
#include <QString>
#include <functional>

namespace korvel {

/// The configuration file that the tray and the agent share: one JSON object, read and written whole. Nothing is
/// cached; keys that a caller does not change survive because it reads, changes and writes the whole object.
class AgentConfig {
public:
    explicit AgentConfig(const Paths &p) : paths(p) {}

    /// The object in the file; empty when it is missing, unreadable, not a regular file, over 1 MiB or not an object.
    QJsonObject readCfg() const;
    /// Replaces the file (mode 0600, folder 0700). False when it could not: the old file stays whole.
    bool writeCfg(const QJsonObject &cfg) const;
    /// Reads the object, lets `change` alter it and writes it back. False as above, and when a file is there that
    /// cannot be read: what it holds must not be lost. A file that holds no object counts as empty.
    bool changeCfg(const std::function<void(QJsonObject &cfg)> &change) const;

private:
    const Paths &paths;
};

/// The text under `key`, or the empty text when it is absent or not a text.
QString cfgText(const QJsonObject &cfg, QStringView key);

} // namespace korvel
