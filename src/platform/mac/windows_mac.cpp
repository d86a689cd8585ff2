#include "ui/widgets/windows.h"

#include "platform/mac/native_application_mac.h"
#include "platform/mac/native_windows_mac.h"
#include "ui/widgets/key_guard.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <algorithm>

namespace korvel {

namespace {

void *nativeView(QWidget &window) { return reinterpret_cast<void *>(window.winId()); }

/// Windows that take the focus. An application stays active without windows, so it is hidden when the last one closes;
/// that returns the focus.
class FrontWindows final : public QObject {
public:
    using QObject::QObject;

    void add(QWidget &window) {
        if (windows.contains(&window))
            return;
        windows.append(&window);
        window.installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override {
        // Deferred: another window may replace this one.
        if (event->type() == QEvent::Hide)
            QTimer::singleShot(0, this, [this] { hideWithoutWindows(); });
        return false;
    }

private:
    void hideWithoutWindows() {
        windows.removeAll(nullptr);
        if (std::none_of(windows.begin(), windows.end(), [](const auto &window) { return window->isVisible(); }))
            native::hideApplication();
    }

    QList<QPointer<QWidget>> windows;
};

FrontWindows &frontWindows() {
    static QPointer<FrontWindows> all;
    if (!all)
        all = new FrontWindows(qApp);
    return *all;
}

} // namespace

void bringToFront(QWidget &window, WindowLevel level) {
    frontWindows().add(window);
    window.show();
    // For windows that stay on top, Qt uses a level above the system's dialogs.
    if (level == WindowLevel::Floating)
        native::makeFloating(nativeView(window));
    native::activateApplication();
    native::makeKeyAndOrderFront(nativeView(window));
    native::orderFrontRegardless(nativeView(window)); // brings it to the front even if macOS refuses the activation
    window.activateWindow();
}

// AppKit knows the key window of any application.
QScreen *screenInFront() {
    const native::Point middle = native::middleOfMainScreen();
    return QGuiApplication::screenAt(QPoint(static_cast<int>(middle.x), static_cast<int>(middle.y)));
}

void showNotice(QWidget &notice) {
    native::makeNotice(nativeView(notice)); // first: otherwise the window may keep activating after it was shown once
    if (native::canPreventActivation(nativeView(notice)))
        native::preventActivation(nativeView(notice));
    notice.show();
    // Not QWidget::raise(), which activates the application on macOS.
    native::orderFrontRegardless(nativeView(notice));
    native::announce(notice.windowTitle().toStdString());
}

// An NSEvent marks key repetition, even if the window did not see the key go down.
KeyCodes keysDown() { return {}; }

} // namespace korvel
