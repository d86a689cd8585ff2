#include "ui/window_front.h"

#include "platform/native_application_mac.h"
#include "platform/native_windows_mac.h"

#include <QWidget>

namespace korvel {

namespace {
void *nativeView(QWidget &window) { return reinterpret_cast<void *>(window.winId()); }
} // namespace

void bringToFront(QWidget &window, WindowLevel level) {
    window.show();
    // Qt sets a level of its own for windows that stay on top, above the system's dialogs.
    if (level == WindowLevel::Floating)
        native::makeFloating(nativeView(window));
    native::activateApplication();
    native::makeKeyAndOrderFront(nativeView(window));
    window.activateWindow();
}

void showNotice(QWidget &notice) {
    native::makeNotice(nativeView(notice)); // first: a window that was shown once may keep activating
    notice.show();
    // Not QWidget::raise(): on macOS it activates the application.
    native::orderFrontRegardless(nativeView(notice));
}

} // namespace korvel
