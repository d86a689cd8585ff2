#pragma once

#include <string>

namespace korvel::native {

/// Writes a line to the system log, where everybody who may read the log can read it. May be called on any thread.
void writeSystemLog(const std::string &line);

} // namespace korvel::native
