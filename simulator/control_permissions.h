#pragma once

#include "simulator/control_command.h"

#include <span>

namespace korvel::sim {

// The commands for the agent's permissions, and their part of the help text.
std::span<const CommandEntry> permissionCommands();
extern const char PERMISSION_HELP[];

} // namespace korvel::sim
