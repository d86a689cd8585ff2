#pragma once

#include "app/model/situation.h"
#include "ui/views/menu_entry.h"

namespace korvel {

/// The encryption block of the menu. Empty if there is nothing to show, otherwise ends with a separator.
QList<MenuEntry> e2MenuItems(const Situation &situation);

} // namespace korvel
