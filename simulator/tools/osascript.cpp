#include "simulator/tools/tools.h"

#include "simulator/home/files.h"
#include "simulator/home/scenario.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <optional>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int USER_CANCELED = -128;
constexpr int COMMAND_NOT_FOUND = 127;

const QStringList LEADING_ARGUMENTS{
    u"-e"_s, u"on run argv"_s,
    u"-e"_s, u"do shell script (item 1 of argv) with prompt (item 2 of argv) with administrator privileges"_s,
    u"-e"_s, u"end run"_s};
constexpr int SCRIPT = 6; // the argument after them
constexpr int PROMPT = 7;

const QStringList HOST_TOOLS{u"/bin/rm"_s, u"/usr/bin/awk"_s, u"/usr/bin/mktemp"_s};

ProgramResult executionError(const QString &text, int number) {
    return {1, {}, u"0:123: execution error: %1 (%2)\n"_s.arg(text).arg(number)};
}

/// The replacement of an absolute path in the script; none if the script must not use that path.
std::optional<QString> placeOf(const QString &path, const HomePaths &paths) {
    if (path != QDir::cleanPath(path))
        return std::nullopt;
    if (path == PRIVATE_TEMP || path.startsWith(PRIVATE_TEMP + u'/'))
        return paths.privateTemp() + path.mid(PRIVATE_TEMP.size());
    const QFileInfo simulated(simulatedRoot() + path);
    if (simulated.isFile() && simulated.isExecutable())
        return simulated.filePath();
    return HOST_TOOLS.contains(path) ? std::optional(path) : std::nullopt;
}

QString quoted(QString text) { return u'\'' + text.replace(u'\'', u"'\\''"_s) + u'\''; }

/// The script with replaced absolute paths, and the first path without a replacement.
struct MappedScript {
    QString text;
    QString stray = {};
};

/// Keeps texts in single quotes: they are data, such as the package's path.
MappedScript mapped(const QString &script, const HomePaths &paths) {
    static const QRegularExpression WORDS(uR"('[^']*'|\\.|(?<![\w/.}-])(?<path>/[\w.-][\w./+-]*))"_s);
    MappedScript result;
    qsizetype end = 0;
    for (auto words = WORDS.globalMatch(script); words.hasNext();) {
        const auto word = words.next();
        const QString path = word.captured(u"path"_s);
        if (path.isEmpty())
            continue;
        const auto place = placeOf(path, paths);
        if (!place)
            return {{}, path};
        result.text += script.mid(end, word.capturedStart() - end) + quoted(*place);
        end = word.capturedEnd();
    }
    result.text += script.mid(end);
    return result;
}

ProgramResult runScript(const QString &script, const HomePaths &paths) {
    const MappedScript ours = mapped(script, paths);
    if (!ours.stray.isEmpty())
        return executionError(u"sh: %1: No such file or directory"_s.arg(ours.stray), COMMAND_NOT_FOUND);
    QDir().mkpath(paths.privateTemp());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PATH"_s, simulatedRoot() + "/usr/bin"_L1); // excludes tools of the host
    QProcess shell;
    shell.setProcessEnvironment(environment);
    shell.setStandardInputFile(QProcess::nullDevice());
    shell.start(u"/bin/sh"_s, {u"-c"_s, ours.text});
    if (!shell.waitForFinished(-1) || shell.exitStatus() != QProcess::NormalExit)
        return executionError(u"The command was ended by a signal."_s, COMMAND_NOT_FOUND);
    if (shell.exitCode() == 0)
        return {0, QString::fromUtf8(shell.readAllStandardOutput())};
    const QString error = QString::fromUtf8(shell.readAllStandardError()).trimmed();
    return executionError(error.isEmpty() ? u"The command exited with a non-zero status."_s : error, shell.exitCode());
}

} // namespace

ProgramResult osascript(const ProgramCall &call) {
    const QStringList &arguments = call.arguments;
    if (arguments.size() != PROMPT + 1 || arguments.first(SCRIPT) != LEADING_ARGUMENTS || arguments[PROMPT].isEmpty())
        return {1, {}, u"osascript: the simulator runs only a shell script with administrator privileges\n"_s};
    const QJsonObject settings = Scenario(call.paths).section("install"_L1);
    pauseFor(milliseconds(settings, "promptMs"_L1));
    if (const auto fault = toolFault(call.paths, "install"_L1, u"osascript"_s))
        return *fault;
    if (settings.value("cancel"_L1).toBool())
        return executionError(u"User canceled."_s, USER_CANCELED);
    return runScript(arguments[SCRIPT], call.paths);
}

} // namespace korvel::sim
