#include "ui/widgets/keys_down.h"

namespace korvel {

// An NSEvent says whether its key repeats, also in a window that did not see the key go down.
KeyCodes keysDown() { return {}; }

} // namespace korvel
