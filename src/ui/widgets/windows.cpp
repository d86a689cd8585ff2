#include "ui/widgets/windows.h"

#include "ui/widgets/scrolling_text.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QScreen>
#include <QShortcut>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace korvel {

namespace {

constexpr int TITLE_BAR = 40;  // generous: the actual height is unknown until the window shows
constexpr int LEAST_ROOM = 48; // for a scrolling text
constexpr int MIN_PANEL = 28;  // estimated height of an unknown panel
constexpr int MAX_PANEL = 64;

QRect roomOn(const QScreen *screen) {
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(0, 0, 800, 600);
}

QRect roomFor(const QWidget &window) {
    return window.isVisible() ? window.screen()->availableGeometry() : roomForWindows();
}

/// The visible scrolling texts of the window.
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
            part->updateGeometry(); // otherwise a changed text inside it is reported too late
    layout.activate();
    return layout.hasHeightForWidth() ? layout.heightForWidth(width) : layout.sizeHint().height();
}

/// Centres a window that is about to show. On Linux, the window manager adds the frame only then: assumes the frame of
/// the last window, and centres again if it differs.
class Centring final : public QObject {
public:
    Centring(QWidget &w, const QRect &r) : QObject(&w), window(w), room(r) {
        window.winId(); // creates the native window; on macOS this includes the frame
        if (const QMargins known = window.windowHandle()->frameMargins(); !known.isNull())
            frame = known;
        place();
        window.windowHandle()->installEventFilter(this);
    }

    bool eventFilter(QObject *handle, QEvent *event) override {
        const bool shows = event->type() == QEvent::Expose && window.windowHandle()->isExposed();
        if (!shows && event->type() != QEvent::Hide)
            return false;
        handle->removeEventFilter(this);
        deleteLater();
        const QMargins known = window.windowHandle()->frameMargins();
        if (shows && known != std::exchange(frame, known))
            place();
        return false;
    }

private:
    void place() {
        QRect area(QPoint(), window.size().grownBy(frame));
        area.moveCenter(room.center());
        const QPoint corner(std::max(area.left(), room.left()), std::max(area.top(), room.top()));
        // Not move(), which includes the current frame.
        window.setGeometry(QRect(corner + QPoint(frame.left(), frame.top()), window.size()));
    }

    QWidget &window;
    const QRect room;
    static inline QMargins frame;
};

} // namespace

QRect roomForWindows() { return roomOn(QGuiApplication::screenAt(QCursor::pos())); }

QRect roomInFront() { return roomOn(screenInFront()); }

void centreOnScreen(QWidget &window) { new Centring(window, roomForWindows()); }

QPoint menuPlace(QPoint pointer, QSize menu, const QRect &screen, const QRect &room) {
    QRect free = room;
    if (free.contains(pointer)) {
        // The panel's area counts as room for windows, or is not reported. Assumes that the icon is in the middle of
        // its panel, along the nearest screen edge.
        const int left = pointer.x() - screen.left(), top = pointer.y() - screen.top();
        const int right = screen.right() - pointer.x(), bottom = screen.bottom() - pointer.y();
        const int nearest = std::min({left, top, right, bottom});
        const int panel = std::clamp(2 * nearest, MIN_PANEL, MAX_PANEL);
        free = screen.adjusted(left == nearest ? panel : 0, top == nearest ? panel : 0, right == nearest ? -panel : 0,
                               bottom == nearest ? -panel : 0);
    }
    const int x = std::min(pointer.x(), free.right() + 1 - menu.width());
    const int y = std::min(pointer.y(), free.bottom() + 1 - menu.height());
    return {std::max(x, free.left()), std::max(y, free.top())};
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

void closeByKey(QWidget &window) {
    const auto *key = new QShortcut(QKeySequence(QKeySequence::Close), &window);
    QObject::connect(key, &QShortcut::activated, &window, [&window] { window.close(); });
}

void EscWindow::keyPressEvent(QKeyEvent *event) {
    // Keys on the number pad always carry the keypad modifier.
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (event->key() != Qt::Key_Escape || !plain)
        return QWidget::keyPressEvent(event);
    event->accept();
    if (onEsc)
        onEsc();
}

} // namespace korvel
