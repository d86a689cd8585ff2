#pragma once

class QWidget;

namespace korvel {

/// Puts a window that is not yet shown in the middle of the screen that the pointer is on.
void centreOnScreen(QWidget &window);

} // namespace korvel
