#include "platform/linux/status_item_linux.h"

#include "ui/widgets/icons.h"
#include "ui/widgets/windows.h"

#include <QCursor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {
const QString WATCHER = u"org.kde.StatusNotifierWatcher"_s;
}

StatusItemLinux::StatusItemLinux() = default;
StatusItemLinux::~StatusItemLinux() = default;

void StatusItemLinux::show(Events e) {
    events = std::move(e);
    exported = std::make_unique<MenuWidget>(MenuHost::Panel, events.chosen);
    popup = std::make_unique<MenuWidget>(MenuHost::Program, events.chosen);
    for (MenuWidget *widget : {exported.get(), popup.get()})
        QObject::connect(&widget->menu(), &QMenu::aboutToShow, &widget->menu(), [this] { events.menuOpening(); });
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    watcher = std::make_unique<QDBusServiceWatcher>(WATCHER, bus, QDBusServiceWatcher::WatchForRegistration);
    QObject::connect(watcher.get(), &QDBusServiceWatcher::serviceRegistered, watcher.get(), [this] {
        hasHost = true;
        putIntoPanel();
    });
    hasHost = bus.interface()->isServiceRegistered(WATCHER);
    putIntoPanel();
}

void StatusItemLinux::putIntoPanel() {
    // Only once: Qt registers again automatically when a host restarts.
    if (tray || !hasHost || !icon)
        return;
    tray = std::make_unique<QSystemTrayIcon>();
    tray->setContextMenu(&exported->menu());
    // A left click only activates the icon; the menu is the only user interface, so it opens it too.
    QObject::connect(tray.get(), &QSystemTrayIcon::activated, tray.get(), [this](QSystemTrayIcon::ActivationReason r) {
        if (r == QSystemTrayIcon::Trigger)
            openPopup();
    });
    tray->setIcon(panelIcon(*icon));
    tray->setToolTip(icon->toolTip);
    tray->show();
}

void StatusItemLinux::openPopup() {
    QMenu &menu = popup->menu();
    const QPoint pointer = QCursor::pos();
    const QScreen *screen = QGuiApplication::screenAt(pointer);
    const auto place = [&](QSize size) {
        return screen ? menuPlace(pointer, size, screen->geometry(), screen->availableGeometry()) : pointer;
    };
    menu.popup(place(menu.sizeHint()));
    menu.move(place(menu.size())); // entries may have been added while it opened
}

void StatusItemLinux::apply(const IconView &view) {
    const std::optional<IconView> before = std::exchange(icon, view);
    if (!tray)
        return putIntoPanel();
    if (!before || before->on != view.on || before->dimmed != view.dimmed)
        tray->setIcon(panelIcon(view));
    if (!before || before->toolTip != view.toolTip)
        tray->setToolTip(view.toolTip);
}

void StatusItemLinux::apply(const MenuView &view) {
    exported->apply(view);
    popup->apply(view);
}

} // namespace korvel
