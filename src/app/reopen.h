#pragma once

#include "app/model/situation.h"

namespace korvel {

/// The effect of opening the application again while it runs.
enum class ReopenAction { SignIn, Repair, ShowPairingCode, ToggleAgent };

ReopenAction reopenAction(const Situation &situation);

} // namespace korvel
