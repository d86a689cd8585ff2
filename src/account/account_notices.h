#pragma once

#include "ui/views/notice_view.h"

#include <optional>

namespace korvel {

Notice signedInNotice(const QString &user);
Notice signingInNotice();
/// `reason`: the sentence of who refused the sign-in; none: it gave none.
Notice signInFailedNotice(const std::optional<QString> &reason);

/// While a sign-in through the browser waits for the agent to come up.
Notice agentAwaitedNotice();
Notice agentNotUpNotice();
/// The agent named no page to open.
Notice noSignInPageNotice();

Notice signingOutNotice();
Notice signedOutNotice();
Notice signOutFailedNotice();

} // namespace korvel
