#pragma once

#include "app/model/situation.h"
#include "app/model/tray_state.h"
#include "ui/views/menu_entry.h"
#include "ui/views/notice_view.h"

namespace korvel {

/// Shown before the system's own prompts appear.
Notice promptsComingNotice();
/// Shown after the prompts: the permissions that the agent has.
Notice permissionVerdictNotice(const PermissionState &permissions);
/// Shown after the prompts if the agent does not report its permissions.
Notice permissionsRequestedNotice();
Notice permissionsNotRequestedNotice();

/// The permission block of the menu: a heading, an entry for each permission and the entry that requests them. Empty if
/// there is nothing to show.
QList<MenuEntry> permMenuItems(const Situation &situation);

} // namespace korvel
