#pragma once

class QWidget;

namespace korvel {

/// Puts a window that is not yet shown in the middle of the screen that the pointer is on.
void centreOnScreen(QWidget &window);

/// Fixes the window's size: `width` points wide, as high as what it shows needs.
void fitHeight(QWidget &window, int width);

} // namespace korvel
