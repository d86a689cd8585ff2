#pragma once

#include <QString>
#include <optional>

namespace korvel {

/// SHA-256 (FIPS 180-4) of a regular file in lower-case hexadecimal digits; none when it is anything else or cannot be
/// read. Streamed; blocks.
std::optional<QString> sha256File(const QString &path);

} // namespace korvel
