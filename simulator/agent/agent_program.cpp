#include "simulator/agent/agent_program.h"

#include "base/unix_process.h"
#include "simulator/agent/agent_interface.h"
#include "simulator/agent/sign_in.h"
#include "simulator/home/files.h"
#include "simulator/home/scenario.h"
#include "simulator/launchd/job_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int DEFAULT_PORT = 8790;

/// The log line of a call.
QJsonObject lineOf(const ProgramCall &call) {
    return {{u"time"_s, timeNow()},
            {u"arguments"_s, QJsonArray::fromStringList(call.arguments)},
            {u"lang"_s, qEnvironmentVariable("KORVEL_LANG")}};
}

/// Runs the agent until SIGTERM or SIGINT.
int run(const ProgramCall &call) {
    const UnixSignals signalHandling({SIGTERM, SIGINT}, [](int) { QCoreApplication::exit(0); });
    AgentInterface interface(call.paths);
    const int delay = milliseconds(Scenario(call.paths).section("agent"_L1), "startDelayMs"_L1);
    QTimer::singleShot(delay, QCoreApplication::instance(), [&interface] {
        const int named = qEnvironmentVariableIntValue("KORVEL_HOOK_PORT");
        const int port = named > 0 ? named : DEFAULT_PORT;
        const bool listens = interface.listen(port);
        std::fprintf(stderr, "%s %s 127.0.0.1:%d\n", qUtf8Printable(AGENT_VERSION),
                     listens ? "listens on" : "cannot listen on", port);
        if (!listens)
            QCoreApplication::exit(1);
    });
    return QCoreApplication::exec();
}

/// Writes the job file and loads the job as an installer does: a loaded job is restarted.
bool installService(const ProgramCall &call) {
    QJsonObject environment;
    for (const char *name : {"KORVEL_HOOK_PORT", "KORVEL_HOME"})
        if (qEnvironmentVariableIsSet(name))
            environment.insert(QString::fromLatin1(name), qEnvironmentVariable(name));
    const QString launchctl = simulatedRoot() + "/bin/launchctl"_L1;
    const QString domain = u"gui/%1"_s.arg(::getuid());
    const QString target = domain + u'/' + AGENT_LABEL;
    runProgram(launchctl, {u"enable"_s, target});
    return writeAgentJob(call.paths, call.program, environment) &&
           (runProgram(launchctl, {u"bootstrap"_s, domain, call.paths.jobFile()}) == 0 ||
            runProgram(launchctl, {u"kickstart"_s, u"-k"_s, target}) == 0);
}

/// Runs an installation command, or the scenario's fault of that name instead.
int install(const ProgramCall &call, const QString &faultName, bool (*command)(const ProgramCall &)) {
    QJsonObject line = lineOf(call);
    const Scenario scenario(call.paths);
    const QJsonObject fault = scenario.fault(scenario.values(), {}, faultName);
    pauseFor(milliseconds(fault, "delayMs"_L1));
    int status = fault.value("status"_L1).toInt();
    if (status == 0 && !command(call))
        status = 1;
    const QString error = fault.value("stderr"_L1).toString(status == 0 ? QString() : u"korvel-agent: failed\n"_s);
    std::fputs(qUtf8Printable(error), stderr);
    line.insert("status"_L1, status);
    line.insert("error"_L1, error);
    appendLine(call.paths.agentLog(), line);
    return status;
}

} // namespace

int agentProgram(const ProgramCall &call) {
    const QString command = call.arguments.join(u' ');
    if (command == "install-service"_L1)
        return install(call, u"installService"_s, installService);
    if (command == "install-hooks"_L1)
        return install(call, u"installHooks"_s, [](const ProgramCall &) { return true; });
    QJsonObject line = lineOf(call);
    QByteArray input;
    if (QFile file; command == "login --stdin-json"_L1 && file.open(STDIN_FILENO, QIODevice::ReadOnly))
        input = file.readAll();
    line.insert("input"_L1, QJsonDocument::fromJson(withoutPasswords(input)).object());
    appendLine(call.paths.agentLog(), line);
    if (command == "run"_L1)
        return run(call);
    if (command == "login --stdin-json"_L1) {
        signInByCommand(call, QJsonDocument::fromJson(input).object());
        return 0;
    }
    std::fputs("usage: korvel-agent run | login --stdin-json | install-service | install-hooks\n", stderr);
    return 2;
}

} // namespace korvel::sim
