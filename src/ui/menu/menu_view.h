#pragma once

#include "app/model/situation.h"
#include "ui/views/menu_entry.h"

namespace korvel {

/// The menu for a situation.
MenuView menuView(const Situation &situation);

/// Whether opening the menu triggers an update check.
bool updateCheckDue(const UpdateState &update, Instant now);

} // namespace korvel
