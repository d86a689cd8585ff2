#include "ui/window_front.h"

#include <QWidget>

namespace korvel {

// Window managers go by the flags and the type that the window was made with.

void bringToFront(QWidget &window, WindowLevel) {
    window.show();
    window.raise();
    window.activateWindow();
}

void showNotice(QWidget &notice) {
    notice.show();
    notice.raise();
}

} // namespace korvel
