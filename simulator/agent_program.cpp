#include "simulator/agent_program.h"

#include "simulator/agent_interface.h"
#include "simulator/files.h"
#include "simulator/job_file.h"
#include "simulator/request_text.h"
#include "simulator/scenario.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 LARGEST_INPUT = 1 << 20;

QJsonObject logLine(const ProgramCall &call) {
    return {{u"time"_s, timeNow()},
            {u"arguments"_s, QJsonArray::fromStringList(call.arguments)},
            {u"lang"_s, qEnvironmentVariable("KORVEL_LANG")}};
}

void logCall(const ProgramCall &call, const QByteArray &input) {
    QJsonObject line = logLine(call);
    line.insert("input"_L1, withoutPasswords(QJsonDocument::fromJson(input).object()));
    appendLine(call.paths.agentLog(), line);
}

QByteArray readInput() {
    QFile input;
    if (!input.open(STDIN_FILENO, QIODevice::ReadOnly))
        return {};
    QByteArray text;
    while (text.size() <= LARGEST_INPUT) {
        const QByteArray block = input.read(LARGEST_INPUT);
        if (block.isEmpty())
            break;
        text += block;
    }
    return text;
}

JobFile agentJob(const ProgramCall &call) {
    JobFile job = agentJobFile(call.paths, call.program);
    for (const char *name : {"KORVEL_HOOK_PORT", "KORVEL_HOME"})
        if (qEnvironmentVariableIsSet(name))
            job.environment.insert(QString::fromLatin1(name), qEnvironmentVariable(name));
    return job;
}

// Loads the job as an installer would: a job that is loaded already is restarted.
bool loadAgentJob(const HomePaths &paths) {
    const QString launchctl = standInRoot() + "/bin/launchctl"_L1;
    const QString domain = u"gui/%1"_s.arg(::getuid());
    const QString target = domain + u'/' + agentLabel();
    runProgram(launchctl, {u"enable"_s, target});
    return runProgram(launchctl, {u"bootstrap"_s, domain, paths.jobFile()}) == 0 ||
           runProgram(launchctl, {u"kickstart"_s, u"-k"_s, target}) == 0;
}

// A command of the installation as the scenario has it end; `asked` is its section.
ProgramResult endingOf(const QJsonObject &asked) {
    const int status = asked.value("status"_L1).toInt();
    const QString error = status == 0 ? QString() : u"korvel-agent: fails because the scenario says so\n"_s;
    return {status, {}, asked.value("stderr"_L1).toString(error)};
}

ProgramResult installService(const ProgramCall &call, const QJsonObject &asked) {
    const ProgramResult ending = endingOf(asked);
    const bool succeeds = ending.status == 0;
    if (succeeds && !replaceFile(call.paths.jobFile(), jobFileText(agentJob(call)), 0644))
        return {1, {}, u"korvel-agent: cannot write the job file\n"_s};
    if (!succeeds || loadAgentJob(call.paths))
        return ending;
    return {1, {}, u"korvel-agent: cannot load the job\n"_s};
}

ProgramResult installHooks(const ProgramCall &, const QJsonObject &asked) { return endingOf(asked); }

// Carries out a command of the installation as `section` of the scenario says, and logs it with how it ended.
int runInstallation(const ProgramCall &call, QLatin1StringView section,
                    ProgramResult (*command)(const ProgramCall &, const QJsonObject &asked)) {
    QJsonObject line = logLine(call);
    const Scenario scenario = Scenario::read(call.paths);
    QJsonObject asked = scenario.section(section);
    if (!scenario.takeTurn(section, asked))
        asked = {};
    pauseFor(milliseconds(asked, "delayMs"_L1));
    const ProgramResult result = command(call, asked);
    std::fputs(qUtf8Printable(result.error), stderr);
    line.insert("status"_L1, result.status);
    line.insert("error"_L1, result.error);
    appendLine(call.paths.agentLog(), line);
    return result.status;
}

} // namespace

int agentProgram(const ProgramCall &call) {
    const QString command = call.arguments.join(u' ');
    if (command == "install-service"_L1)
        return runInstallation(call, "installService"_L1, installService);
    if (command == "install-hooks"_L1)
        return runInstallation(call, "installHooks"_L1, installHooks);
    const bool signsIn = command == "login --stdin-json"_L1;
    const QByteArray input = signsIn ? readInput() : QByteArray();
    logCall(call, input);
    if (signsIn)
        return agentLogin(call, input);
    if (command == "run"_L1)
        return runAgent(call);
    if (command == "--version"_L1) {
        std::puts(qUtf8Printable(agentVersion()));
        return 0;
    }
    std::fputs("usage: korvel-agent run | login --stdin-json | install-service | install-hooks | --version\n", stderr);
    return 2;
}

} // namespace korvel::sim
