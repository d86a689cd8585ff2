#pragma once

#include "simulator/home/files.h"
#include "simulator/home/program_call.h"
#include "simulator/home/scenario.h"

#include <optional>

namespace korvel::sim {

/// What a scenario has a tool do instead of its work: the entry `name` in `section`. "status" fails with it, "stderr"
/// is what it prints then, "delayMs" waits first, "times" limits all that. None when the tool is to do its work, which
/// the delay may precede.
inline std::optional<ProgramResult> toolFault(const HomePaths &paths, QLatin1StringView section, const QString &name) {
    const QJsonObject fault = Scenario(paths).fault(section, name);
    pauseFor(milliseconds(fault, QLatin1StringView("delayMs")));
    const int status = fault.value(QLatin1StringView("status")).toInt();
    const QString error = fault.value(QLatin1StringView("stderr")).toString();
    return status == 0 ? std::nullopt : std::optional(ProgramResult{status, {}, error});
}

} // namespace korvel::sim
