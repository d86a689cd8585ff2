#pragma once

#include <QPixmap>

namespace korvel {

/// The symbol of an alert: the application icon, or a warning sign with a small icon. Sharp at every scale, visible on
/// light and dark.
QPixmap alertSymbol(bool warning, qreal pixelsPerPoint);

} // namespace korvel
