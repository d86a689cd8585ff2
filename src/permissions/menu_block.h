#pragma once

#include "app/situation.h"
#include "ui/menu_entry.h"

namespace korvel {

/// The permission block of the menu: heading, one entry a permission, the request; empty when there is nothing to show.
QList<MenuEntry> permMenuItems(const Situation &situation);

} // namespace korvel
