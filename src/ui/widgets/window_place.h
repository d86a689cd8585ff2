#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace korvel {

/// The usable area of the screen with the pointer.
QRect roomForWindows();
/// The usable area of the user's current screen.
QRect roomInFront();

/// Centres a window that is about to show, including its frame, in the usable area. It never extends beyond the left or
/// top edge.
void centreOnScreen(QWidget &window);

/// Position of a menu opened by a click at `pointer` on a panel: next to the panel, not over it. `room` is the area of
/// `screen` without panels.
QPoint menuPlace(QPoint pointer, QSize menu, const QRect &screen, const QRect &room);

/// Fixes the window's size: `width` points wide, as high as its content. If the screen is too small, the longest text
/// from outside scrolls. A visible window is kept on the screen.
void fitHeight(QWidget &window, int width);

} // namespace korvel
