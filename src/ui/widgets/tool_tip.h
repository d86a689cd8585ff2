#pragma once

#include <QString>

namespace korvel {

/// Escapes `text` so that a Qt tool tip shows it literally, even if it looks like markup.
QString plainToolTip(const QString &text);

} // namespace korvel
