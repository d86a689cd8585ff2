#pragma once

#include <QString>
#include <optional>

namespace korvel {

/// This program's own path, symbolic links resolved.
QString executablePath();

/// The folder of the application bundle that this program lies in ("….app"): three levels above the program.
QString bundlePath();

/// korvel-exchange in it.
QString exchangeProgram();

/// The developer's override of the agent program, KORVEL_AGENT_BIN.
std::optional<QString> agentOverride();

} // namespace korvel
