#include "ui/widgets/keys_down.h"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <xcb/xproto.h>

namespace korvel {

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
