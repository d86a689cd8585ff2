#pragma once

#include "simulator/control_command.h"

#include <span>

namespace korvel::sim {

// The commands for the updates that the account server offers, and their part of the help text.
std::span<const CommandEntry> updateCommands();
extern const char UPDATE_HELP[];

} // namespace korvel::sim
