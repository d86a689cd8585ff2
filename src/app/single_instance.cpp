#include "app/single_instance.h"

#include <algorithm>

namespace korvel {

void endOtherInstances(RunningInstances &instances, const std::function<void(milliseconds)> &runLoopFor,
                       const std::function<Instant()> &now) {
    const QList<qint64> others = instances.others();
    if (others.isEmpty())
        return;
    for (const qint64 instance : others)
        instances.terminate(instance);
    const auto stillRuns = [&](qint64 instance) { return !instances.isTerminated(instance); };
    const Instant deadline = now() + 3s;
    while (now() < deadline && std::any_of(others.begin(), others.end(), stillRuns))
        runLoopFor(100ms);
    for (const qint64 instance : others)
        if (stillRuns(instance))
            instances.forceTerminate(instance);
}

} // namespace korvel
