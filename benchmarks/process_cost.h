#pragma once

#include <QtGlobal>

namespace korvel::bench {

/// What a process has used up since its start, over all of its threads.
struct Used {
    double cpuMs = 0;
    qint64 wakeUps = 0; ///< Times that one of its threads was put on a processor.
};
Used usedBy(qint64 pid);

/// What it holds now, in KiB: its proportional share of memory, and what it alone has written to.
struct Held {
    qint64 pss = 0;
    qint64 privateDirty = 0;
    int sharers = 0; ///< Other programs with Qt's widgets: they make its share of that library's pages smaller.
};
Held heldBy(qint64 pid);

/// What of it lies in memory, in KiB: now, and the most since the peak was forgotten.
struct Resident {
    qint64 now = 0;
    qint64 peak = 0;
};
Resident residentOf(qint64 pid);
void forgetPeak(qint64 pid);

/// Nanoseconds that its main thread has been on a processor.
qint64 mainThreadNs(qint64 pid);

} // namespace korvel::bench
