#include "ui/widgets/window_front.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace korvel {

// Window managers go by the flags and the type that the window was made with.

void bringToFront(QWidget &window, WindowLevel) {
    window.show();
    window.raise();
    window.activateWindow();
}

QScreen *screenInFront() {
    const QWindow *front = QGuiApplication::focusWindow(); // of this program: X tells no screen of another's
    return front ? front->screen() : QGuiApplication::screenAt(QCursor::pos());
}

// A screen reader reads a notification that appears.
void showNotice(QWidget &notice) {
    notice.show();
    notice.raise();
}

} // namespace korvel
