#pragma once

#include "app/model/paths.h"

namespace korvel {

/// A normal start: replaces older instances, then runs the tray until it quits. Returns the exit status.
int runTray(char **argv, const FixedConfig &config, const Paths &paths);

} // namespace korvel
