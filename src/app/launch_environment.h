#pragma once

#include "app/model/fixed_config.h"

#include <QString>
#include <optional>

namespace korvel {

/// Reads the process's environment and the system's language list.
LaunchEnvironment readLaunchEnvironment();

/// The absolute path of this program, symbolic links resolved.
QString executablePath();

/// The folder of the application bundle ("….app"): three levels above the program.
QString bundlePath();

/// The path of korvel-exchange in the bundle.
QString exchangeProgram();

/// The developer's override of the agent program, from KORVEL_AGENT_BIN.
std::optional<QString> agentOverride();

} // namespace korvel
