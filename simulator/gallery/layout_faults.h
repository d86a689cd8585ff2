#pragma once

#include <QStringList>

class QWidget;

namespace korvel::gallery {

/// What is wrong with how a window that is on the screen lays out what it shows, a line each: a text that its control
/// cuts off, two controls that overlap, a control that leaves the window, a window that leaves the screen.
QStringList layoutFaults(const QWidget &window);

} // namespace korvel::gallery
