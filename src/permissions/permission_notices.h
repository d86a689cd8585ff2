#pragma once

#include "app/model/tray_state.h"
#include "ui/views/notice_view.h"

namespace korvel {

/// Before the system's own prompts come up.
Notice promptsComingNotice();
/// The prompts are through, and this is what the agent holds now.
Notice permissionVerdictNotice(const PermissionState &permissions);
/// The prompts are through, and the agent does not say what it holds.
Notice permissionsRequestedNotice();
Notice permissionsNotRequestedNotice();

} // namespace korvel
