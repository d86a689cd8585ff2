#include "ui/widgets/windows.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace korvel {

// WindowLevel is unused: window managers use the flags and type set at creation.

void bringToFront(QWidget &window, WindowLevel) {
    window.show();
    window.raise();
    window.activateWindow();
}

QScreen *screenInFront() {
    const QWindow *front = QGuiApplication::focusWindow(); // this program's only: X11 reports no others
    return front ? front->screen() : QGuiApplication::screenAt(QCursor::pos());
}

// Screen readers read a notification when it appears.
void showNotice(QWidget &notice) {
    notice.show();
    notice.raise();
}

} // namespace korvel
