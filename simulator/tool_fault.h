#pragma once

#include "simulator/program_call.h"

#include <QLatin1StringView>

#include <optional>

namespace korvel::sim {

// What a scenario has a tool do instead of its work: the entry `name` in the section `section`. "status" fails with it,
// "ignore" does nothing, "stderr" is what it says then, "delayMs" waits first, "times" limits all that. Nothing when
// the tool is to do its work, which the delay may precede.
std::optional<ProgramResult> toolFault(const HomePaths &paths, QLatin1StringView section, const QString &name);

} // namespace korvel::sim
