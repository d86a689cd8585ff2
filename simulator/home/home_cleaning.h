#pragma once

#include "simulator/home/home_paths.h"

namespace korvel::sim {

/// Ends everything of the simulator that runs in a home: tools, then loaded jobs, then agents started by other means.
/// Sends SIGTERM first, SIGKILL after 2 seconds. True when nothing is left.
bool endAllOf(const HomePaths &paths);

} // namespace korvel::sim
