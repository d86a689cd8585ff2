#pragma once

#include "simulator/control_command.h"

#include <span>

namespace korvel::sim {

// The commands for the phone, other devices, alarms and the encryption's state, and their part of the help text.
std::span<const CommandEntry> encryptionCommands();
extern const char ENCRYPTION_HELP[];

} // namespace korvel::sim
