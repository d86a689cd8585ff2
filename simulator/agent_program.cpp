#include "simulator/agent_program.h"

#include "simulator/agent_health.h"
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

void logCall(const ProgramCall &call, const QByteArray &input) {
    appendLine(call.paths.agentLog(), {
                                          {u"time"_s, timeNow()},
                                          {u"arguments"_s, QJsonArray::fromStringList(call.arguments)},
                                          {u"input"_s, withoutPasswords(QJsonDocument::fromJson(input).object())},
                                          {u"lang"_s, qEnvironmentVariable("KORVEL_LANG")},
                                      });
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

int installService(const ProgramCall &call) {
    const QJsonObject fault = Scenario::read(call.paths).section("installService"_L1);
    pauseFor(milliseconds(fault, "delayMs"_L1));
    const int status = fault.value("status"_L1).toInt();
    if (fault.value("writes"_L1).toBool(status == 0) &&
        !replaceFile(call.paths.jobFile(), jobFileText(agentJob(call)), 0644)) {
        std::fputs("korvel-agent: cannot write the job file\n", stderr);
        return 1;
    }
    if (status != 0) {
        std::fputs("korvel-agent: install-service fails because the scenario says so\n", stderr);
        return status;
    }
    return loadAgentJob(call.paths) ? 0 : 1;
}

int installHooks(const ProgramCall &call) {
    const QJsonObject fault = Scenario::read(call.paths).section("installHooks"_L1);
    pauseFor(milliseconds(fault, "delayMs"_L1));
    std::fputs(qUtf8Printable(fault.value("stderr"_L1).toString()), stderr);
    return fault.value("status"_L1).toInt();
}

} // namespace

int agentProgram(const ProgramCall &call) {
    const QString command = call.arguments.join(u' ');
    const bool signsIn = command == "login --stdin-json"_L1;
    const QByteArray input = signsIn ? readInput() : QByteArray();
    logCall(call, input);
    if (signsIn)
        return agentLogin(call, input);
    if (command == "run"_L1)
        return runAgent(call);
    if (command == "install-service"_L1)
        return installService(call);
    if (command == "install-hooks"_L1)
        return installHooks(call);
    if (command == "--version"_L1) {
        std::puts(qUtf8Printable(agentVersion()));
        return 0;
    }
    std::fputs("usage: korvel-agent run | login --stdin-json | install-service | install-hooks | --version\n", stderr);
    return 2;
}

} // namespace korvel::sim
