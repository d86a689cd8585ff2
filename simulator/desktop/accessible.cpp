#include "simulator/desktop/accessible.h"

#include "simulator/desktop/bus_call.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int DEEPEST = 12; // windows here are flat; stops at a cyclic tree

const auto ACCESSIBLE = u"org.a11y.atspi.Accessible"_s;

// Bits of AT-SPI's state set.
enum State { Active = 1, Checked = 4, Focusable = 11, Focused = 12, Sensitive = 24, Showing = 25 };

// Role number of AT-SPI.
constexpr uint PASSWORD_TEXT = 40;

bool has(quint64 states, State state) { return (states >> state & 1) != 0; }

QVariantList callMethod(const QDBusConnection &bus, QDBusMessage message, const QVariantList &arguments) {
    message.setArguments(arguments);
    const auto reply = callWithEvents(bus, message);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList();
}

QRect readArea(const QVariant &reply) {
    int x = 0, y = 0, width = 0, height = 0;
    if (!reply.canConvert<QDBusArgument>())
        return {};
    const auto argument = reply.value<QDBusArgument>();
    argument.beginStructure();
    argument >> x >> y >> width >> height;
    argument.endStructure();
    return {x, y, width, height};
}

int nextConnection = 0;

} // namespace

class AccessibleReader::Listener : public QObject {
    Q_OBJECT
public:
    explicit Listener(std::function<QString(const QDBusMessage &)> n) : notificationOf(std::move(n)) {}
    QString typed;
    QStringList notifications;
public Q_SLOTS:
    // Arguments: insert or delete, position, length, characters.
    void textChanged(const QDBusMessage &signal) {
        typed += signal.arguments().value(3).value<QDBusVariant>().variant().toString();
    }
    // Arguments: state, and 1 if it is set.
    void stateChanged(const QDBusMessage &signal) {
        const QVariantList what = signal.arguments();
        if (what.value(0).toString() != "showing"_L1 || what.value(1).toInt() != 1)
            return;
        if (const QString text = notificationOf(signal); !text.isEmpty())
            notifications.append(text);
    }

private:
    const std::function<QString(const QDBusMessage &)> notificationOf; // empty for other sources
};

std::optional<AccessibleElement> AccessibleWindow::find(const QString &wanted) const {
    const auto found = std::ranges::find(elements, wanted, &AccessibleElement::name);
    return found == elements.end() ? std::nullopt : std::optional(*found);
}

std::optional<AccessibleElement> AccessibleWindow::find(const QString &role, const QString &wanted) const {
    const auto found = std::ranges::find_if(
        elements, [&](const AccessibleElement &each) { return each.role == role && each.name == wanted; });
    return found == elements.end() ? std::nullopt : std::optional(*found);
}

std::optional<AccessibleElement> AccessibleWindow::focus() const {
    const auto found = std::ranges::find(elements, true, &AccessibleElement::focused);
    return found == elements.end() ? std::nullopt : std::optional(*found);
}

AccessibleReader::AccessibleReader()
    : connectionName(u"accessible-reader-%1"_s.arg(++nextConnection)), bus(connectionName) {}

AccessibleReader::~AccessibleReader() { QDBusConnection::disconnectFromBus(connectionName); }

QList<AccessibleWindow> AccessibleReader::windows(qint64 pid) {
    const auto found = connect() ? program(pid) : std::nullopt;
    QList<AccessibleWindow> windows;
    if (!found)
        return windows;
    for (const Object &top : children(*found)) {
        const quint64 state = states(top);
        if (!has(state, Showing))
            continue;
        AccessibleWindow window{.role = call(top, ACCESSIBLE, u"GetRoleName"_s).value(0).toString(),
                                .name = property(top, u"Name"_s),
                                .description = property(top, u"Description"_s),
                                .area = area(top),
                                .active = has(state, Active),
                                .elements = {}};
        for (const Object &child : children(top))
            collect(child, 0, window.elements);
        windows.append(window);
    }
    return windows;
}

bool AccessibleReader::listen() {
    if (!connect())
        return false;
    listener = std::make_unique<Listener>([this](const QDBusMessage &signal) {
        const Object source{signal.service(), signal.path()};
        const bool notifies = call(source, ACCESSIBLE, u"GetRoleName"_s).value(0).toString() == "notification"_L1;
        return notifies ? property(source, u"Name"_s) : QString();
    });
    const Object registry{u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/registry"_s};
    for (const QString &event : {u"object:text-changed"_s, u"object:state-changed"_s})
        call(registry, registry.service, u"RegisterEvent"_s, {event}); // without it, programs send no events
    const QString interface = u"org.a11y.atspi.Event.Object"_s;
    return bus.connect({}, {}, interface, u"TextChanged"_s, listener.get(), SLOT(textChanged(QDBusMessage))) &&
           bus.connect({}, {}, interface, u"StateChanged"_s, listener.get(), SLOT(stateChanged(QDBusMessage)));
}

QString AccessibleReader::typed() const { return listener ? listener->typed : QString(); }

QStringList AccessibleReader::notifications() const { return listener ? listener->notifications : QStringList(); }

bool AccessibleReader::connect() {
    if (bus.isConnected())
        return true;
    const auto address = callMethod(
        QDBusConnection::sessionBus(),
        QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s, u"GetAddress"_s), {});
    if (address.isEmpty())
        return false;
    bus = QDBusConnection::connectToBus(address.first().toString(), connectionName);
    return bus.isConnected();
}

QVariantList AccessibleReader::call(const Object &object, const QString &interface, const QString &method,
                                    const QVariantList &arguments) const {
    return callMethod(bus, QDBusMessage::createMethodCall(object.service, object.path, interface, method), arguments);
}

QString AccessibleReader::property(const Object &object, const QString &name) const {
    const auto reply = call(object, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {ACCESSIBLE, name});
    return reply.value(0).value<QDBusVariant>().variant().toString();
}

QList<AccessibleReader::Object> AccessibleReader::children(const Object &object) const {
    QList<Object> list;
    const auto reply = call(object, ACCESSIBLE, u"GetChildren"_s);
    if (!reply.value(0).canConvert<QDBusArgument>())
        return list;
    const auto argument = reply.first().value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusObjectPath path;
        Object child;
        argument.beginStructure();
        argument >> child.service >> path;
        argument.endStructure();
        child.path = path.path();
        list.append(child);
    }
    argument.endArray();
    return list;
}

std::optional<AccessibleReader::Object> AccessibleReader::program(qint64 pid) const {
    const Object registry{u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/accessible/root"_s};
    const Object daemon{u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s};
    for (const Object &each : children(registry)) {
        const auto owner = call(daemon, daemon.service, u"GetConnectionUnixProcessID"_s, {each.service});
        if (owner.value(0).toLongLong() == pid)
            return each;
    }
    return std::nullopt;
}

QRect AccessibleReader::area(const Object &object) const {
    constexpr uint RELATIVE_TO_SCREEN = 0;
    return readArea(call(object, u"org.a11y.atspi.Component"_s, u"GetExtents"_s, {RELATIVE_TO_SCREEN}).value(0));
}

quint64 AccessibleReader::states(const Object &object) const {
    const auto reply = call(object, ACCESSIBLE, u"GetState"_s);
    const auto words = qdbus_cast<QList<uint>>(reply.value(0));
    return words.size() == 2 ? quint64(words[1]) << 32 | words[0] : 0;
}

AccessibleElement AccessibleReader::element(const Object &object, quint64 states) const {
    AccessibleElement element{.role = call(object, ACCESSIBLE, u"GetRoleName"_s).value(0).toString(),
                              .name = property(object, u"Name"_s),
                              .text = {},
                              .area = area(object),
                              .enabled = has(states, Sensitive),
                              .focusable = has(states, Focusable),
                              .focused = has(states, Focused),
                              .checked = has(states, Checked)};
    if (element.role != "text"_L1)
        return element;
    // Qt 6.4 has one role name for both kinds of fields.
    if (call(object, ACCESSIBLE, u"GetRole"_s).value(0).toUInt() == PASSWORD_TEXT)
        element.role = u"password text"_s;
    element.text = call(object, u"org.a11y.atspi.Text"_s, u"GetText"_s, {0, -1}).value(0).toString();
    return element;
}

void AccessibleReader::collect(const Object &object, int depth, QList<AccessibleElement> &elements) const {
    const quint64 state = states(object);
    if (!has(state, Showing) || depth > DEEPEST)
        return;
    elements.append(element(object, state));
    for (const Object &child : children(object))
        collect(child, depth + 1, elements);
}

} // namespace korvel::sim

#include "accessible.moc"
