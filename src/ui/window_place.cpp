#include "ui/window_place.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLayout>
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

void fitHeight(QWidget &window, int width) {
    QLayout &layout = *window.layout();
    layout.activate();
    const int height = layout.hasHeightForWidth() ? layout.heightForWidth(width) : layout.sizeHint().height();
    window.setFixedSize(width, height);
}

} // namespace korvel
