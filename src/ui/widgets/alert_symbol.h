#pragma once

#include <QPixmap>

namespace korvel {

/// What stands beside an alert's words: the application's icon, small beside a sign where the alert is a warning. Sharp
/// at every scale, clear on light and dark.
QPixmap alertSymbol(bool warning, qreal pixelsPerPoint);

} // namespace korvel
