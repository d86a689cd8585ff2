#include "ui/window_place.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace korvel {

void centreOnScreen(QWidget &window) {
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (screen)
        window.move(screen->availableGeometry().center() - window.rect().center());
}

} // namespace korvel
