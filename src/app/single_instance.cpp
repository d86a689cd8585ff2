#include "app/single_instance.h"

#include <algorithm>

namespace korvel {

void endOtherCopies(RunningCopies &copies, const std::function<void(milliseconds)> &runLoopFor,
                    const std::function<Instant()> &now) {
    const QList<qint64> others = copies.others();
    if (others.isEmpty())
        return;
    for (const qint64 copy : others)
        copies.terminate(copy);
    const auto stillRuns = [&](qint64 copy) { return !copies.isTerminated(copy); };
    const Instant deadline = now() + 3s;
    while (now() < deadline && std::any_of(others.begin(), others.end(), stillRuns))
        runLoopFor(100ms);
    for (const qint64 copy : others)
        if (stillRuns(copy))
            copies.forceTerminate(copy);
}

} // namespace korvel
