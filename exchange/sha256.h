#pragma once

#include <QString>
#include <optional>

namespace korvel {

/// SHA-256 (FIPS 180-4) of a regular file as lower-case hexadecimal digits; none if it is anything else or unreadable.
/// Reads in chunks; blocks.
std::optional<QString> sha256File(const QString &path);

} // namespace korvel
