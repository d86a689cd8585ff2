#include "benchmarks/main_thread.h"

#include "benchmarks/process_cost.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QStringList>
#include <QTimer>
#include <algorithm>
#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace korvel::bench {

QString itemService(qint64 pid) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    QDBusInterface watcher(u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
                           u"org.kde.StatusNotifierWatcher"_s, bus);
    for (const QString &item : watcher.property("RegisteredStatusNotifierItems").toStringList()) {
        const QString service = item.section(u'/', 0, 0);
        if (bus.interface()->servicePid(service).value() == pid)
            return service;
    }
    return {};
}

void MainThread::ping() {
    QDBusMessage message = QDBusMessage::createMethodCall(service, u"/StatusNotifierItem"_s,
                                                          u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    message.setArguments({u"org.kde.StatusNotifierItem"_s, u"Id"_s});
    const qint64 before = mainThreadNs(pid);
    auto *reply = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message, 60'000), call.get());
    QObject::connect(reply, &QDBusPendingCallWatcher::finished, call.get(), [this, reply, before] {
        longest = std::max(longest, mainThreadNs(pid) - before);
        reply->deleteLater();
        QTimer::singleShot(2ms, call.get(), [this] { ping(); });
    });
}

} // namespace korvel::bench
