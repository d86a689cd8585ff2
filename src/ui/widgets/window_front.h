#pragma once

class QScreen;
class QWidget;

namespace korvel {

/// The stacking level of a window among all applications.
enum class WindowLevel { Normal, Floating };

/// Shows a window in front of other applications and gives it the focus.
void bringToFront(QWidget &window, WindowLevel level = WindowLevel::Normal);

/// The user's current screen: of the window with the focus, else of the pointer; null if there is none.
QScreen *screenInFront();

/// Shows a notice above all windows without taking the focus. Screen readers read its title.
void showNotice(QWidget &notice);

} // namespace korvel
