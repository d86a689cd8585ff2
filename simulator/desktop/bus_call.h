#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

namespace korvel::sim {

// Sends a method call and waits at most two seconds for its reply. Runs the event loop meanwhile, because the callee
// may be in this process. Returns an invalid message without a reply.
//
// Not QDBus::BlockWithGui: in Qt 6.4 it waits indefinitely if the reply arrives before its event loop runs.
QDBusMessage callWithEvents(const QDBusConnection &bus, const QDBusMessage &message);

} // namespace korvel::sim
