#pragma once

#include "base/scheduler.h"
#include "ports/running_instances.h"

#include <functional>

namespace korvel {

/// Ends older instances of the tray: sends each a quit request, and kills those still running after 3 seconds.
/// `runLoopFor` runs the event loop for a given time.
void endOtherInstances(RunningInstances &instances, const std::function<void(milliseconds)> &runLoopFor,
                       const std::function<Instant()> &now);

} // namespace korvel
