#pragma once

#include <QString>

namespace korvel {

/// Appearance of the item in the menu bar.
struct IconView {
    bool on = false;    ///< Shows the active image instead of the inactive one.
    bool dimmed = true; ///< Looks like a disabled control.
    QString toolTip;    ///< Plain text on one line.
    bool operator==(const IconView &) const = default;
};

} // namespace korvel
