#pragma once

#include "app/model/situation.h"
#include "ui/views/menu_entry.h"

namespace korvel {

/// The menu as it is to be shown now.
MenuView menuView(const Situation &situation);

/// Whether opening the menu is a reason to look for an update.
bool updateCheckDue(const UpdateState &update, Instant now);

} // namespace korvel
