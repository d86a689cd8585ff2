#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace korvel {

/// The room for windows on the screen that the pointer is on.
QRect roomForWindows();
/// The same on the screen where the user is.
QRect roomInFront();

/// Puts a window that is about to show in the middle of the room for windows, with its frame, and never over the upper
/// or left edge.
void centreOnScreen(QWidget &window);

/// Where a menu opens that the user asked for with a click at `pointer` on a panel: beside the panel, not over it.
/// `room` is the part of `screen` that panels leave to windows.
QPoint menuPlace(QPoint pointer, QSize menu, const QRect &screen, const QRect &room);

/// Fixes the window's size: `width` points wide, as high as what it shows needs. Where the screen has no room for that,
/// the longest text from outside is scrolled; a window that is shown stays on the screen.
void fitHeight(QWidget &window, int width);

} // namespace korvel
