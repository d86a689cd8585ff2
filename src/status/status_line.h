#pragma once

#include "app/model/situation.h"

#include <QString>

namespace korvel {

/// The one line that says what state the whole system is in. Heads the menu and opens the startup notice.
QString statusLine(const Situation &situation);

} // namespace korvel
