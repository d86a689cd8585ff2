#pragma once

#include <string>

namespace korvel::native {

/// Writes a public line to the system log. Thread-safe.
void writeSystemLog(const std::string &line);

/// The modifier keys currently held, one bit each (NSEvent's device-independent flags).
unsigned long long heldModifiers();

/// The user-visible name of this computer, such as "Ann's Mac"; empty if there is none.
std::string computerName();

/// The user's preferred languages in order, one per line, such as "zh-Hans-CN".
std::string preferredLanguageLines();

} // namespace korvel::native
