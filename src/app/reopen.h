#pragma once

#include "app/model/situation.h"

namespace korvel {

/// What opening the application again while it runs does.
enum class ReopenAction { SignIn, Repair, ShowPairingCode, ToggleAgent };

ReopenAction reopenAction(const Situation &situation);

} // namespace korvel
