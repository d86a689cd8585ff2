#include "ui/widgets/keys_down.h"

namespace korvel {

// An NSEvent marks key repetition, even if the window did not see the key go down.
KeyCodes keysDown() { return {}; }

} // namespace korvel
