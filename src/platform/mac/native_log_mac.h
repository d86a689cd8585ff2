#pragma once

#include <string>

namespace korvel::native {

/// Writes a public line to the system log. Thread-safe.
void writeSystemLog(const std::string &line);

} // namespace korvel::native
