#pragma once

#include <QRect>

class QWidget;

namespace korvel {

/// The room for windows on the screen that the pointer is on.
QRect roomForWindows();

/// Puts a window that is not yet shown in the middle of that room, and never over its upper or left edge.
void centreOnScreen(QWidget &window);

/// Fixes the window's size: `width` points wide, as high as what it shows needs. Where the screen has no room for that,
/// the longest text from outside is scrolled; a window that is shown stays on the screen.
void fitHeight(QWidget &window, int width);

} // namespace korvel
