#include "benchmarks/item_watcher.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace korvel::bench {

namespace {
const QString NAME = u"org.kde.StatusNotifierWatcher"_s;
}

bool ItemWatcher::start() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.registerVirtualObject(u"/StatusNotifierWatcher"_s, this) && bus.registerService(NAME);
}

QString ItemWatcher::introspect(const QString &) const { return {}; }

bool ItemWatcher::handleMessage(const QDBusMessage &message, const QDBusConnection &connection) {
    const QString member = message.member();
    QVariantList answer;
    if (member == u"Get")
        answer = {QVariant::fromValue(QDBusVariant(true))}; // IsStatusNotifierHostRegistered
    else if (member == u"GetAll")
        answer = {QVariantMap{{u"IsStatusNotifierHostRegistered"_s, true}}};
    connection.send(message.createReply(answer));
    if (member == u"RegisterStatusNotifierItem" && registered)
        registered();
    return true;
}

} // namespace korvel::bench
