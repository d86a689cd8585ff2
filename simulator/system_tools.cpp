#include "simulator/system_tools.h"

#include "simulator/files.h"
#include "simulator/process_list.h"

#include <QRegularExpression>

#include <csignal>

namespace korvel::sim {

using namespace Qt::StringLiterals;

ProgramResult pkill(const ProgramCall &call) {
    constexpr int USAGE = 2;
    if (call.arguments.size() != 2 || call.arguments[0] != "-f"_L1)
        return {USAGE, {}, u"usage: pkill -f PATTERN\n"_s};
    const QRegularExpression pattern(call.arguments[1]);
    if (!pattern.isValid())
        return {USAGE, {}, u"pkill: %1\n"_s.arg(pattern.errorString())};
    bool matched = false;
    for (const ProcessInfo &process : processesOfHome(call.paths.home))
        if (pattern.match(process.commandLine.join(u' ')).hasMatch())
            matched |= ::kill(process.id, SIGTERM) == 0;
    return {matched ? 0 : 1};
}

ProgramResult open(const ProgramCall &call) {
    if (call.arguments.isEmpty())
        return {1, {}, u"usage: open URL...\n"_s};
    for (const QString &url : call.arguments)
        appendLine(call.paths.openedLog(), {{u"time"_s, timeNow()}, {u"url"_s, url}});
    return {};
}

} // namespace korvel::sim
