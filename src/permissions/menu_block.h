#pragma once

#include "app/model/situation.h"
#include "ui/views/menu_entry.h"

namespace korvel {

/// The permission block of the menu: a heading, an entry for each permission and the entry that requests them. Empty if
/// there is nothing to show.
QList<MenuEntry> permMenuItems(const Situation &situation);

} // namespace korvel
