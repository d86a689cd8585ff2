#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QWidget>
#include <functional>

namespace korvel {

/// The stacking level of a window among all applications.
enum class WindowLevel { Normal, Floating };

/// Shows a window in front of other applications and gives it the focus.
void bringToFront(QWidget &window, WindowLevel level = WindowLevel::Normal);

/// The user's current screen: of the window with the focus, else of the pointer; null if there is none.
QScreen *screenInFront();

/// Shows a notice above all windows without taking the focus. Screen readers read its title.
void showNotice(QWidget &notice);

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

/// Closes the window with the platform's close shortcut, such as Command-W.
void closeByKey(QWidget &window);

/// A window that calls onEsc on Escape without modifiers. Escape is always consumed, also when onEsc is not set.
class EscWindow : public QWidget {
public:
    using QWidget::QWidget;
    std::function<void()> onEsc;

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace korvel
