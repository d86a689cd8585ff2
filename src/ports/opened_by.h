#pragma once

namespace korvel {

/// Who causes a window to open.
enum class OpenedBy {
    User,   ///< The user has just requested it.
    Itself, ///< The program. The user may be typing elsewhere, so the window ignores keys at first.
};

} // namespace korvel
