#pragma once

#include "app/model/tray_state.h"
#include "ui/views/notice_view.h"

namespace korvel {

/// Shown before the system's own prompts appear.
Notice promptsComingNotice();
/// Shown after the prompts: the permissions that the agent has.
Notice permissionVerdictNotice(const PermissionState &permissions);
/// Shown after the prompts if the agent does not report its permissions.
Notice permissionsRequestedNotice();
Notice permissionsNotRequestedNotice();

} // namespace korvel
