#pragma once

#include <QString>

namespace korvel {

/// What the item in the menu bar shows.
struct IconView {
    bool on = false;    ///< The active image instead of the inactive one.
    bool dimmed = true; ///< The look of a disabled control.
    QString toolTip;    ///< Plain text on one line.
    bool operator==(const IconView &) const = default;
};

} // namespace korvel
