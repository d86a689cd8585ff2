#pragma once

#include "simulator/control_command.h"

#include <span>

namespace korvel::sim {

// The commands of korvel-simulator that are about the account server, and what its help says about them.
std::span<const CommandEntry> accountCommands();
extern const char ACCOUNT_HELP[];

} // namespace korvel::sim
