#include "simulator/tools/tools.h"

#include "exchange/sha256.h"
#include "simulator/home/files.h"
#include "simulator/home/processes.h"
#include "simulator/home/scenario.h"

#include <QFile>
#include <QRegularExpression>
#include <csignal>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {
const QByteArray PACKAGE_MARK = "korvel-package ";
}

std::optional<ProgramResult> toolFault(const HomePaths &paths, QLatin1StringView section, const QString &name) {
    const QJsonObject fault = Scenario(paths).fault(section, name);
    pauseFor(milliseconds(fault, "delayMs"_L1));
    const int status = fault.value("status"_L1).toInt();
    return status == 0 ? std::nullopt : std::optional(ProgramResult{status, {}, fault.value("stderr"_L1).toString()});
}

ProgramResult pkill(const ProgramCall &call) {
    const QRegularExpression pattern(call.arguments.value(1));
    bool matched = false;
    for (const ProcessInfo &process : processesOfHome(call.paths.home))
        if (call.arguments.value(0) == "-f"_L1 && pattern.match(process.commandLine.join(u' ')).hasMatch())
            matched |= ::kill(process.id, SIGTERM) == 0;
    return {matched ? 0 : 1};
}

ProgramResult open(const ProgramCall &call) {
    for (const QString &url : call.arguments)
        appendLine(call.paths.openedLog(), {{u"time"_s, timeNow()}, {u"url"_s, url}});
    return {};
}

ProgramResult xattr(const ProgramCall &call) {
    const bool works = call.arguments.value(0) == "-d"_L1 && QFile::exists(call.arguments.value(2));
    return works ? ProgramResult{} : ProgramResult{1, {}, u"xattr: No such file\n"_s};
}

ProgramResult cp(const ProgramCall &call) {
    if (const auto fault = toolFault(call.paths, "install"_L1, u"cp"_s))
        return *fault;
    const QString moment = Scenario(call.paths).section("install"_L1).value("swapBefore"_L1).toString();
    const auto swapBefore = [&](QLatin1StringView next) {
        if (moment == next)
            replaceFile(call.arguments.value(0), PACKAGE_MARK + "6.6.6\nput there by somebody else\n");
    };
    swapBefore("copy"_L1);
    const int status = runProgram(u"/bin/cp"_s, call.arguments);
    swapBefore("check"_L1);
    return {status};
}

ProgramResult shasum(const ProgramCall &call) {
    const QString file = call.arguments.value(2);
    const auto hash = sha256File(file);
    return hash ? ProgramResult{0, *hash + u"  "_s + file + u'\n'} : ProgramResult{1, {}, u"shasum: cannot read\n"_s};
}

ProgramResult installer(const ProgramCall &call) {
    if (const auto fault = toolFault(call.paths, "install"_L1, u"installer"_s))
        return *fault;
    QFile package(call.arguments.value(1));
    const QByteArray line = package.open(QIODevice::ReadOnly) ? package.readLine(200) : QByteArray();
    const auto hash = sha256File(package.fileName());
    if (call.arguments.mid(2) != QStringList{u"-target"_s, u"/"_s} || !line.startsWith(PACKAGE_MARK) || !hash)
        return {1, {}, u"installer: Error the package path specified was invalid: '%1'.\n"_s.arg(package.fileName())};
    const QString version = QString::fromUtf8(line.sliced(PACKAGE_MARK.size())).trimmed();
    appendLine(call.paths.installed(), {{u"time"_s, timeNow()}, {u"version"_s, version}, {u"sha256"_s, *hash}});
    return {0, u"installer: The install was successful.\n"_s};
}

} // namespace korvel::sim
