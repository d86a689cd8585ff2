#include "simulator/tool_fault.h"

#include "simulator/files.h"
#include "simulator/scenario.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

std::optional<ProgramResult> toolFault(const HomePaths &paths, QLatin1StringView section, const QString &name) {
    const Scenario scenario = Scenario::read(paths);
    const QJsonObject entry = scenario.section(section).value(name).toObject();
    if (entry.isEmpty() || !scenario.takeTurn(section + u' ' + name, entry))
        return std::nullopt;
    pauseFor(milliseconds(entry, "delayMs"_L1));
    const ProgramResult result{entry.value("status"_L1).toInt(), {}, entry.value("stderr"_L1).toString()};
    if (result.status != 0 || entry.value("ignore"_L1).toBool())
        return result;
    return std::nullopt;
}

} // namespace korvel::sim
