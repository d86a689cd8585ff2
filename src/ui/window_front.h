#pragma once

class QWidget;

namespace korvel {

/// How high a window stands among those of all applications.
enum class WindowLevel { Normal, Floating };

/// Shows a window in front of the other applications' and gives it the keyboard.
void bringToFront(QWidget &window, WindowLevel level = WindowLevel::Normal);

/// Shows a notice above all windows; whoever has the keyboard keeps it.
void showNotice(QWidget &notice);

} // namespace korvel
