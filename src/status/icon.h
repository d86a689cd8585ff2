#pragma once

#include "app/model/situation.h"
#include "ui/views/icon_view.h"

namespace korvel {

IconView iconView(const Situation &situation);

} // namespace korvel
