#pragma once

#include "app/model/automation.h"
#include "app/model/paths.h"

#include <QByteArray>
#include <optional>

namespace korvel {

/// Runs one automation mode and gives the exit status. Opens no display; touches no network beyond what the mode is
/// for.
int runAutomation(AutomationMode mode, int &argc, char **argv, const FixedConfig &config, const Paths &paths);

/// The menu for a health description, one line an entry; none when the description is not a JSON object.
std::optional<QByteArray> menuDump(const QByteArray &description, const FixedConfig &config, const Paths &paths);

} // namespace korvel
