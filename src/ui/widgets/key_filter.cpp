#include "ui/widgets/key_filter.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QWindow>

namespace korvel {

namespace {

/// Whether a key activates or closes the window, rather than editing or navigating.
bool answers(const QKeyEvent &event, const QWidget *focus) {
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
        return true;
    case Qt::Key_Space:
    case Qt::Key_Select:
        return !qobject_cast<const QLineEdit *>(focus);
    default:
        return event.matches(QKeySequence::Close);
    }
}

} // namespace

KeyFilter::KeyFilter(QWidget &w) : window(w), guard(keysDown) { w.installEventFilter(this); }

void KeyFilter::comesUp(OpenedBy by) {
    if (by == OpenedBy::Program && !window.isActiveWindow()) // an active window is already in view
        guard.close(Clock::now());
    if (by == OpenedBy::User && !window.isVisible())
        guard.open();
}

bool KeyFilter::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::Show:
        // System key events reach the native window first, before any widget.
        if (window.windowHandle())
            window.windowHandle()->installEventFilter(this); // installing it twice is harmless
        break;
    case QEvent::WindowActivate:
        if (watched == &window)
            guard.entered();
        break;
    case QEvent::ShortcutOverride: // shortcuts bypass the native window
        if (guard.takes(pressOf(static_cast<QKeyEvent &>(*event)), Clock::now()))
            break;
        event->accept();
        return true;
    case QEvent::KeyPress:
        return watched != &window && !guard.press(pressOf(static_cast<QKeyEvent &>(*event)), Clock::now());
    case QEvent::KeyRelease:
        if (watched != &window)
            guard.release(static_cast<QKeyEvent *>(event)->nativeScanCode());
        break;
    default:
        break;
    }
    return false;
}

KeyPress KeyFilter::pressOf(const QKeyEvent &event) const {
    return {.code = event.nativeScanCode(),
            .repeats = event.isAutoRepeat(),
            .answers = answers(event, window.focusWidget())};
}

} // namespace korvel
