#include "platform/mac/running_instances_mac.h"

#include <unistd.h>

namespace korvel {

RunningInstancesMac::RunningInstancesMac() : applications("dev.korvel.tray") {}

QList<qint64> RunningInstancesMac::others() {
    QList<qint64> found;
    for (std::size_t i = 0; i < applications.count(); ++i) {
        const qint64 pid = applications.processIdentifier(i);
        // -1: the application has ended.
        if (pid <= 0 || pid == ::getpid())
            continue;
        places.emplace(pid, i);
        found.append(pid);
    }
    return found;
}

void RunningInstancesMac::terminate(qint64 instance) { applications.terminate(places.at(instance)); }

bool RunningInstancesMac::isTerminated(qint64 instance) { return applications.isTerminated(places.at(instance)); }

void RunningInstancesMac::forceTerminate(qint64 instance) { applications.forceTerminate(places.at(instance)); }

} // namespace korvel
