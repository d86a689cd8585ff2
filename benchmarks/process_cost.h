#pragma once

#include <QtGlobal>

namespace korvel::bench {

/// The resources that a process has used since its start, in all of its threads.
struct Used {
    double cpuMs = 0;
    qint64 wakeUps = 0; ///< Times that one of its threads was scheduled.
};
Used usedBy(qint64 pid);

/// The memory that a process holds now, in KiB: its proportional share, and the pages that only it has written to.
struct Held {
    qint64 pss = 0;
    qint64 privateDirty = 0;
    int sharers = 0; ///< Other programs with Qt Widgets loaded; they reduce the process's share of that library.
};
Held heldBy(qint64 pid);

/// The resident memory of a process, in KiB: now, and the peak since it was last reset.
struct Resident {
    qint64 now = 0;
    qint64 peak = 0;
};
Resident residentOf(qint64 pid);
void forgetPeak(qint64 pid);

/// CPU time of the main thread, in nanoseconds.
qint64 mainThreadNs(qint64 pid);

} // namespace korvel::bench
