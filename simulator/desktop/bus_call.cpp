#include "simulator/desktop/bus_call.h"

#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace korvel::sim {

QDBusMessage callWithEvents(const QDBusConnection &bus, const QDBusMessage &message) {
    using namespace std::chrono_literals;
    constexpr auto REPLY_TIMEOUT = 2s;
    constexpr auto CHECK_INTERVAL = 100ms; // a reply that arrives before the loop runs does not wake it
    const QDBusPendingCall call =
        bus.asyncCall(message, int(std::chrono::milliseconds(REPLY_TIMEOUT + CHECK_INTERVAL).count()));
    const QDBusPendingCallWatcher watcher(call);
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    QTimer checks;
    QObject::connect(&checks, &QTimer::timeout, &loop, [&] {
        if (call.isFinished())
            loop.quit();
    });
    checks.start(CHECK_INTERVAL);
    QTimer::singleShot(REPLY_TIMEOUT, &loop, &QEventLoop::quit);
    if (!call.isFinished())
        loop.exec();
    return call.isFinished() ? call.reply() : QDBusMessage();
}

} // namespace korvel::sim
