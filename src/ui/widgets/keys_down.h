#pragma once

#include "ui/widgets/key_guard.h"

namespace korvel {

/// The keys that are down, as QKeyEvent::nativeScanCode(). Empty where the system marks key repetition reliably, so
/// that this is not needed.
KeyCodes keysDown();

} // namespace korvel
