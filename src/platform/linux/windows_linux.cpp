#include "ui/widgets/windows.h"

#include "ui/widgets/key_guard.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <cstdlib>
#include <memory>
#include <xcb/xproto.h>

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

// On X11, a window that did not see a key go down gets its first repetition as a new key press.
KeyCodes keysDown() {
    // Empty without X11. On Wayland, Qt itself generates and marks repetitions.
    auto *x11 = QGuiApplication::platformName() == u"xcb"
                    ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>()
                    : nullptr;
    if (!x11)
        return {};
    const std::unique_ptr<xcb_query_keymap_reply_t, decltype(&std::free)> reply(
        xcb_query_keymap_reply(x11->connection(), xcb_query_keymap(x11->connection()), nullptr), &std::free);
    KeyCodes codes;
    for (quint32 code = 0; reply && code < 8 * sizeof(reply->keys); ++code)
        if (reply->keys[code / 8] & (1 << code % 8))
            codes.insert(code);
    return codes;
}

} // namespace korvel
