#pragma once

#include <string>

namespace korvel::native {

/// The modifier keys held at this moment, one bit each (NSEvent's device-independent flags).
unsigned long long heldModifiers();

/// The name that the user gave this computer, such as "Ann's Mac"; empty when there is none.
std::string computerName();

/// The user's ordered list of languages, one a line, such as "zh-Hans-CN".
std::string preferredLanguageLines();

} // namespace korvel::native
