#pragma once

class QScreen;
class QWidget;

namespace korvel {

/// How high a window stands among those of all applications.
enum class WindowLevel { Normal, Floating };

/// Shows a window in front of the other applications' and gives it the keyboard.
void bringToFront(QWidget &window, WindowLevel level = WindowLevel::Normal);

/// The screen where the user is: that of the window with the keyboard, else of the pointer; null where there is none.
QScreen *screenInFront();

/// Shows a notice above all windows and has a screen reader read its title; whoever has the keyboard keeps it.
void showNotice(QWidget &notice);

} // namespace korvel
