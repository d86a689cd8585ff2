#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

namespace korvel::sim {

// Sends a method call and waits at most two seconds for its answer with the event loop running, because the callee may
// be in this process. An invalid message when none came.
//
// QDBus::BlockWithGui is meant for this, but in Qt 6.4 it waits for ever when the answer arrives before its event loop
// runs.
QDBusMessage callWithEvents(const QDBusConnection &bus, const QDBusMessage &message);

} // namespace korvel::sim
