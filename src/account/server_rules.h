#pragma once

#include "app/model/fixed_config.h"

#include <QString>
#include <optional>

namespace korvel {

/// The address "host:port" of a typed or stored text, without scheme and path; none if it is not a usable server.
std::optional<QString> normalizeServer(const QString &text);

/// Whether `address` is an official server of another edition than this one.
bool isForeignServer(const FixedConfig &config, const QString &address);

/// The account server to use when the agent's configuration holds `stored`; never empty.
QString serverOf(const FixedConfig &config, const QString &stored);

} // namespace korvel
