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

} // namespace korvel::bench
