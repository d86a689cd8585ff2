#include "simulator/desktop/panel_probe.h"

#include "simulator/desktop/bus_call.h"
#include "simulator/desktop/panel_values.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QVariantMap>
#include <algorithm>
#include <utility>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto CHECK_INTERVAL = 20ms;

const auto WATCHER = u"org.kde.StatusNotifierWatcher"_s;
const auto WATCHER_PATH = u"/StatusNotifierWatcher"_s;
const auto ITEM = u"org.kde.StatusNotifierItem"_s;
const auto MENU = u"com.canonical.dbusmenu"_s;
const auto PROPERTIES = u"org.freedesktop.DBus.Properties"_s;

int nextConnection = 0;

QDBusMessage callMethod(const QDBusConnection &bus, const QString &service, const QString &path,
                        const QString &interface, const QString &method, const QList<QVariant> &arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return callWithEvents(bus, message);
}

QVariant first(const QDBusMessage &reply) {
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
}

} // namespace

// Receives the item's signals, which D-Bus delivers to slots only.
class PanelProbe::Receiver : public QObject {
    Q_OBJECT
public:
    int count = 0;
    std::function<void()> changed;

public Q_SLOTS:
    void take(const QDBusMessage &signal) {
        static const QStringList kinds{u"NewIcon"_s,  u"NewToolTip"_s,    u"NewStatus"_s,
                                       u"NewTitle"_s, u"LayoutUpdated"_s, u"ItemsPropertiesUpdated"_s};
        count += kinds.contains(signal.member()) ? 1 : 0;
        if (!std::exchange(announced, true))
            QTimer::singleShot(0, this, [this] { announce(); });
    }

private:
    void announce() {
        announced = false;
        if (changed)
            changed();
    }

    bool announced = false;
};

PanelProbe::PanelProbe()
    : bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"panel-probe-%1"_s.arg(++nextConnection))),
      receiver(std::make_unique<Receiver>()) {}

PanelProbe::~PanelProbe() { QDBusConnection::disconnectFromBus(bus.name()); }

bool PanelProbe::waitForItem(std::chrono::milliseconds within, qint64 pid) {
    return waitUntil(
        [&] {
            for (const QString &registered : registeredItems()) {
                if (attach(registered, pid))
                    return true;
            }
            return false;
        },
        within);
}

bool PanelProbe::isRegistered() {
    const auto items = registeredItems();
    return std::ranges::any_of(items, [this](const QString &registered) {
        return !itemService.isEmpty() && registered.startsWith(itemService);
    });
}

std::optional<PanelItem> PanelProbe::item() {
    const auto reply = call(itemPath, PROPERTIES, u"GetAll"_s, {ITEM});
    if (reply.type() != QDBusMessage::ReplyMessage)
        return std::nullopt;
    const auto values = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    PanelItem item;
    item.menuPath = values.value(u"Menu"_s).value<QDBusObjectPath>().path();
    item.icons = readPictures(values.value(u"IconPixmap"_s).value<QDBusArgument>());
    item.toolTipTitle = readToolTip(values.value(u"ToolTip"_s).value<QDBusArgument>());
    return item;
}

QList<PanelMenuEntry> PanelProbe::menu() {
    const auto reply = call(menuPath, MENU, u"GetLayout"_s, {0, -1, QStringList()});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() < 2)
        return {};
    return readLayout(reply.arguments().at(1).value<QDBusArgument>());
}

QString PanelProbe::statusLine() { return menu().value(0).title; }

bool PanelProbe::open() {
    const auto now = QVariant::fromValue(uint(QDateTime::currentSecsSinceEpoch()));
    const auto nothing = QVariant::fromValue(QDBusVariant(0));
    const auto shown = call(menuPath, MENU, u"AboutToShow"_s, {0});
    const auto opened = call(menuPath, MENU, u"Event"_s, {0, u"opened"_s, nothing, now});
    return shown.type() == QDBusMessage::ReplyMessage && opened.type() == QDBusMessage::ReplyMessage;
}

bool PanelProbe::click(const QString &title) {
    for (const auto &entry : menu()) {
        if (entry.title != title || entry.separator || !entry.enabled || !entry.visible)
            continue;
        const auto now = QVariant::fromValue(uint(QDateTime::currentSecsSinceEpoch()));
        const auto nothing = QVariant::fromValue(QDBusVariant(0));
        return call(menuPath, MENU, u"Event"_s, {entry.id, u"clicked"_s, nothing, now}).type() ==
               QDBusMessage::ReplyMessage;
    }
    return false;
}

int PanelProbe::signalCount() const { return receiver->count; }

void PanelProbe::clearSignals() { receiver->count = 0; }

void PanelProbe::onChange(std::function<void()> call) { receiver->changed = std::move(call); }

bool PanelProbe::waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds within) {
    QElapsedTimer waited;
    waited.start();
    while (!condition()) {
        if (waited.elapsed() >= within.count())
            return false;
        QEventLoop loop;
        QTimer::singleShot(CHECK_INTERVAL, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

QStringList PanelProbe::registeredItems() {
    const auto reply =
        callMethod(bus, WATCHER, WATCHER_PATH, PROPERTIES, u"Get"_s, {WATCHER, u"RegisteredStatusNotifierItems"_s});
    return first(reply).value<QDBusVariant>().variant().toStringList();
}

// `registered` is a bus name followed by the item's path, or a bus name alone for the usual path.
bool PanelProbe::attach(const QString &registered, qint64 pid) {
    const qsizetype slash = registered.indexOf(u'/');
    const QString service = slash < 0 ? registered : registered.left(slash);
    const QString path = slash < 0 ? u"/StatusNotifierItem"_s : registered.mid(slash);
    const auto reply = callMethod(bus, u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s,
                                  u"GetConnectionUnixProcessID"_s, {service});
    if (!first(reply).isValid() || (pid != 0 && first(reply).toLongLong() != pid))
        return false;

    for (const QString &interface : {ITEM, MENU})
        bus.disconnect(itemService, {}, interface, {}, receiver.get(), SLOT(take(QDBusMessage)));
    itemService = service;
    itemPath = path;
    receiver->count = 0;
    for (const QString &interface : {ITEM, MENU})
        bus.connect(itemService, {}, interface, {}, receiver.get(), SLOT(take(QDBusMessage)));
    menuPath = item().value_or(PanelItem{}).menuPath;
    return !menuPath.isEmpty();
}

QDBusMessage PanelProbe::call(const QString &path, const QString &interface, const QString &method,
                              const QList<QVariant> &arguments) const {
    return itemService.isEmpty() || path.isEmpty() ? QDBusMessage()
                                                   : callMethod(bus, itemService, path, interface, method, arguments);
}

} // namespace korvel::sim

#include "panel_probe.moc"
