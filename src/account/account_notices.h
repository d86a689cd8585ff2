#pragma once

#include "ui/views/notice_view.h"

#include <optional>

namespace korvel {

Notice signedInNotice(const QString &user);
Notice signingInNotice();
/// `reason`: the sentence that came with the refusal; none if there was none.
Notice signInFailedNotice(const std::optional<QString> &reason);

/// Shown while a sign-in through the browser waits for the agent to start.
Notice agentAwaitedNotice();
Notice agentNotUpNotice();
/// The agent's response names no page to open.
Notice noSignInPageNotice();

Notice signingOutNotice();
Notice signedOutNotice();
Notice signOutFailedNotice();

} // namespace korvel
