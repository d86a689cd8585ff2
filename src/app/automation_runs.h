#pragma once

#include "app/model/automation.h"
#include "app/model/paths.h"

#include <QByteArray>
#include <optional>

namespace korvel {

/// Runs one automation mode and returns the exit status. Opens no display. Uses the network only where the mode
/// requires it.
int runAutomation(AutomationMode mode, int &argc, char **argv, const FixedConfig &config, const Paths &paths);

/// The menu for a health response, one entry per line; none if the response is not a JSON object.
std::optional<QByteArray> menuDump(const QByteArray &description, const FixedConfig &config, const Paths &paths);

} // namespace korvel
