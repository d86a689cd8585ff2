#include "ui/window_place.h"

#include "ui/scrolling_text.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLayout>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace korvel {

namespace {

constexpr int TITLE_BAR = 40;  // hardly a system has a higher one; how high it is nobody knows before it shows
constexpr int LEAST_ROOM = 48; // for a text that is scrolled

QRect roomFor(const QWidget &window) {
    return window.isVisible() ? window.screen()->availableGeometry() : roomForWindows();
}

/// The texts that can be scrolled, of those that the window shows.
QList<ScrollingText *> scrollingTexts(const QWidget &window) {
    QList<ScrollingText *> texts;
    for (QScrollArea *area : window.findChildren<QScrollArea *>())
        if (auto *text = dynamic_cast<ScrollingText *>(area); text && text->isVisibleTo(&window))
            texts.append(text);
    return texts;
}

int neededHeight(QWidget &window, int width) {
    QLayout &layout = *window.layout();
    for (QWidget *part : window.findChildren<QWidget *>())
        if (part->layout())
            part->updateGeometry(); // by itself it would tell only later that a text in it has changed
    layout.activate();
    return layout.hasHeightForWidth() ? layout.heightForWidth(width) : layout.sizeHint().height();
}

} // namespace

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
    const QRect room = roomFor(window);
    const QList<ScrollingText *> texts = scrollingTexts(window);
    QList<int> rooms;
    int height = neededHeight(window, width);
    for (const ScrollingText *text : texts) {
        rooms.append(text->fullHeight());
        height += text->fullHeight() - text->height();
    }
    for (int over = height + TITLE_BAR - room.height(); over > 0;) {
        const auto longest = std::max_element(rooms.begin(), rooms.end());
        if (longest == rooms.end() || *longest <= LEAST_ROOM)
            break;
        const int less = std::min(over, *longest - LEAST_ROOM);
        *longest -= less;
        over -= less;
    }
    for (qsizetype i = 0; i < texts.size(); ++i)
        texts.at(i)->setRoom(rooms.at(i));
    window.setFixedSize(width, neededHeight(window, width));
    if (window.isVisible() && window.frameGeometry().bottom() > room.bottom())
        window.move(window.x(), std::max(room.top(), room.bottom() + 1 - window.frameGeometry().height()));
}

} // namespace korvel
