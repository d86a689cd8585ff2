#pragma once

namespace korvel {

/// Whose doing it is that a window comes up.
enum class OpenedBy {
    User,   ///< Who has just chosen it.
    Itself, ///< The user may be typing in another program: the window takes no key at first.
};

} // namespace korvel
