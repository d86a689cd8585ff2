#pragma once

#include "app/model/fixed_config.h"

namespace korvel {

/// Reads the process's environment and the system's language list.
LaunchEnvironment readLaunchEnvironment();

} // namespace korvel
