// All programs of the simulated Mac in one, selected by the name it is started under.

#include "simulator/agent/agent_program.h"
#include "simulator/control/control.h"
#include "simulator/home/files.h"
#include "simulator/launchd/job_supervisor.h"
#include "simulator/server/account_server_program.h"
#include "simulator/tools/tools.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QStandardPaths>
#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

using Program = int (*)(const ProgramCall &);
using Tool = ProgramResult (*)(const ProgramCall &);

/// Runs a simulated tool and logs the call.
template <Tool tool>
int runTool(const ProgramCall &call) {
    const qint64 start = timeNow();
    const ProgramResult result = tool(call);
    std::fputs(qUtf8Printable(result.output), stdout);
    std::fputs(qUtf8Printable(result.error), stderr);
    appendLine(call.paths.toolLog(), {{u"time"_s, start},
                                      {u"tool"_s, call.name},
                                      {u"arguments"_s, QJsonArray::fromStringList(call.arguments)},
                                      {u"status"_s, result.status},
                                      {u"error"_s, result.error}});
    return result.status;
}

struct Part {
    QLatin1StringView name;
    Program run;
};

/// The list of programs in CMakeLists.txt has the same names.
constexpr Part PARTS[] = {
    {"korvel-simulator"_L1, control}, {"korvel-agent"_L1, agentProgram},    {"korvel-account-server"_L1, serveAccounts},
    {"launchd"_L1, superviseJob},     {"launchctl"_L1, runTool<launchctl>}, {"pkill"_L1, runTool<pkill>},
    {"open"_L1, runTool<open>},       {"osascript"_L1, runTool<osascript>}, {"xattr"_L1, runTool<xattr>},
    {"cp"_L1, runTool<cp>},           {"shasum"_L1, runTool<shasum>},       {"installer"_L1, runTool<installer>},
};

/// A supervisor or server outlives its parent and must not keep the parent's files open.
void closeInheritedFiles() {
    for (const QString &name : QDir(u"/dev/fd"_s).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot))
        if (const int file = name.toInt(); file > STDERR_FILENO)
            ::close(file);
}

ProgramCall callOf(const QString &startedAs, const QStringList &arguments) {
    ProgramCall call;
    call.paths = HomePaths::ofThisProcess();
    call.name = QFileInfo(startedAs).fileName();
    call.program = startedAs.contains(u'/') ? QDir::cleanPath(QDir::current().absoluteFilePath(startedAs))
                                            : QStandardPaths::findExecutable(startedAs);
    call.arguments = arguments;
    return call;
}

} // namespace

int runPart(int argc, char **argv) {
    const QString name = QFileInfo(QString::fromLocal8Bit(argv[0])).fileName();
    if (name == "launchd"_L1 || name == "korvel-account-server"_L1)
        closeInheritedFiles();
    // Suppresses Qt's warning about a locale that is not UTF-8.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(nullptr);

    const ProgramCall call = callOf(QString::fromLocal8Bit(argv[0]), QCoreApplication::arguments().mid(1));
    const auto part = std::ranges::find(PARTS, call.name, &Part::name);
    if (part == std::end(PARTS)) {
        std::fprintf(stderr, "korvel-simulator takes no part named '%s'\n", qUtf8Printable(call.name));
        return 127;
    }
    return part->run(call);
}

} // namespace korvel::sim

int main(int argc, char **argv) { return korvel::sim::runPart(argc, argv); }
