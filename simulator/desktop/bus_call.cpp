#include "simulator/desktop/bus_call.h"

#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace korvel::sim {

QDBusMessage callWithEvents(const QDBusConnection &bus, const QDBusMessage &message) {
    using namespace std::chrono_literals;
    constexpr auto REPLY_TIMEOUT = 2s;
    constexpr auto LOOK_AGAIN_EVERY = 100ms; // an answer that came before the loop ran wakes nobody
    const QDBusPendingCall call =
        bus.asyncCall(message, int(std::chrono::milliseconds(REPLY_TIMEOUT + LOOK_AGAIN_EVERY).count()));
    const QDBusPendingCallWatcher watcher(call);
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (call.isFinished())
            loop.quit();
    });
    look.start(LOOK_AGAIN_EVERY);
    QTimer::singleShot(REPLY_TIMEOUT, &loop, &QEventLoop::quit);
    if (!call.isFinished())
        loop.exec();
    return call.isFinished() ? call.reply() : QDBusMessage();
}

} // namespace korvel::sim
