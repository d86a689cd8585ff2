#pragma once

#include "ui/widgets/key_guard.h"

namespace korvel {

/// The keys that are down, by their QKeyEvent::nativeScanCode(). None where the system marks every repeated key itself,
/// and so nobody has to know.
KeyCodes keysDown();

} // namespace korvel
