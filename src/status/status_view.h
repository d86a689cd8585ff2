#pragma once

#include "app/model/situation.h"
#include "ui/views/icon_view.h"

#include <QString>

namespace korvel {

/// The status of the whole system in one line: the first line of the menu and of the startup notice.
QString statusLine(const Situation &situation);

IconView iconView(const Situation &situation);

} // namespace korvel
