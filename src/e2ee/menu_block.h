#pragma once

#include "app/model/situation.h"
#include "ui/views/menu_entry.h"

namespace korvel {

/// The encryption block of the menu: empty when there is nothing to show, otherwise it ends in a separator.
QList<MenuEntry> e2MenuItems(const Situation &situation);

} // namespace korvel
