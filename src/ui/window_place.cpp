#include "ui/window_place.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLayout>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace korvel {

QRect roomForWindows() {
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(0, 0, 800, 600);
}

void centreOnScreen(QWidget &window) {
    const QRect room = roomForWindows();
    QRect place(QPoint(), window.frameSize()); // without the frame where it was never shown
    place.moveCenter(room.center());
    window.move(std::max(place.left(), room.left()), std::max(place.top(), room.top()));
}

void fitHeight(QWidget &window, int width) {
    QLayout &layout = *window.layout();
    for (QWidget *part : window.findChildren<QWidget *>())
        if (part->layout())
            part->updateGeometry(); // by itself it would tell only later that a text in it has changed
    layout.activate();
    const int height = layout.hasHeightForWidth() ? layout.heightForWidth(width) : layout.sizeHint().height();
    window.setFixedSize(width, height);
}

} // namespace korvel
