#include "benchmarks/item_watcher.h"

#include <QDBusConnection>

using namespace Qt::StringLiterals;

namespace korvel::bench {

bool ItemWatcher::start() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.registerObject(u"/StatusNotifierWatcher"_s, this,
                              QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties) &&
           bus.registerService(u"org.kde.StatusNotifierWatcher"_s);
}

void ItemWatcher::RegisterStatusNotifierItem(const QString &) {
    if (registered)
        registered();
}

} // namespace korvel::bench
