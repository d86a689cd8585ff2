#pragma once

#include <QString>

namespace korvel {

/// `text` so that a Qt tool tip shows it as it is, also when it looks like markup.
QString plainToolTip(const QString &text);

} // namespace korvel
