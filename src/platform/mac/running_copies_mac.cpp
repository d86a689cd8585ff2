#include "platform/mac/running_copies_mac.h"

#include <unistd.h>

namespace korvel {

RunningCopiesMac::RunningCopiesMac() : applications("dev.korvel.tray") {}

QList<qint64> RunningCopiesMac::others() {
    QList<qint64> found;
    for (std::size_t i = 0; i < applications.count(); ++i) {
        const qint64 pid = applications.processIdentifier(i);
        // An application that has ended meanwhile has no number any more: -1.
        if (pid <= 0 || pid == ::getpid())
            continue;
        places.emplace(pid, i);
        found.append(pid);
    }
    return found;
}

void RunningCopiesMac::terminate(qint64 copy) { applications.terminate(places.at(copy)); }

bool RunningCopiesMac::isTerminated(qint64 copy) { return applications.isTerminated(places.at(copy)); }

void RunningCopiesMac::forceTerminate(qint64 copy) { applications.forceTerminate(places.at(copy)); }

} // namespace korvel
