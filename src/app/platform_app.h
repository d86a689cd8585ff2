#pragma once

#include "app/model/paths.h"

namespace korvel {

/// A normal start: takes over from older instances, then runs the tray until it quits. Gives the exit status.
int runTray(char **argv, const FixedConfig &config, const Paths &paths);

} // namespace korvel
