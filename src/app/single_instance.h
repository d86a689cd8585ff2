#pragma once

#include "base/scheduler.h"
#include "ports/running_instances.h"

#include <functional>

namespace korvel {

/// Ends the instances of the tray that were running before: politely first, by force those that are still there after
/// 3 seconds. `runLoopFor` runs the event loop that long; `now` tells the time.
void endOtherInstances(RunningInstances &instances, const std::function<void(milliseconds)> &runLoopFor,
                       const std::function<Instant()> &now);

} // namespace korvel
