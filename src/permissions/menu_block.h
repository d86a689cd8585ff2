#pragma once

#include "app/model/situation.h"
#include "ui/views/menu_entry.h"

namespace korvel {

/// The permission block of the menu: heading, one entry a permission, the request; empty when there is nothing to show.
QList<MenuEntry> permMenuItems(const Situation &situation);

} // namespace korvel
