#pragma once

namespace korvel {

/// Who causes a window to open.
enum class OpenedBy {
    User,    ///< The user has just requested it.
    Program, ///< The user may be typing elsewhere, so the window ignores keys at first.
};

} // namespace korvel
