#include "simulator/home/home.h"

#include "simulator/agent/agent_config.h"
#include "simulator/home/files.h"
#include "simulator/home/processes.h"
#include "simulator/home/program_call.h"
#include "simulator/home/scenario.h"
#include "simulator/launchd/job_file.h"
#include "simulator/launchd/launch_job.h"
#include "simulator/server/account_server_program.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <csignal>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int DEFAULT_PORT = 8790;

/// Makes a program available at a path as a file: a hard link, else a copy.
bool placeProgram(const QString &program, const QString &path) {
    const QString source = QFileInfo(program).canonicalFilePath();
    if (source.isEmpty() || !QDir().mkpath(QFileInfo(path).path()))
        return false;
    QFile::remove(path);
    return ::link(QFile::encodeName(source).constData(), QFile::encodeName(path).constData()) == 0 ||
           QFile::copy(source, path);
}

bool isLasting(const QStringList &words) {
    const QString name = words.first().section(u'/', -1);
    return name == "korvel-agent"_L1 || name == "korvel-account-server"_L1 ||
           words.first() == QString(simulatedRoot() + "/sbin/launchd"_L1);
}

/// Includes the shell that runs a script for the simulated osascript.
bool isTool(const QStringList &words) {
    const QString place = simulatedRoot() + u'/';
    const bool isShell = words.first() == "/bin/sh"_L1 && words.value(1) == "-c"_L1 && words.value(2).contains(place);
    return isShell || (words.first().startsWith(place) && !isLasting(words));
}

bool endWithin(int milliseconds, const HomePaths &paths, int signal, bool (*belongs)(const QStringList &words)) {
    for (const QDeadlineTimer deadline(milliseconds);; pauseFor(10)) {
        bool found = false;
        for (const ProcessInfo &process : processesOfHome(paths.home))
            if (belongs(process.commandLine)) {
                found = true;
                ::kill(process.id, signal);
            }
        if (!found || deadline.hasExpired())
            return !found;
    }
}

} // namespace

Home::Home(const QString &directory) : paths{QFileInfo(directory).canonicalFilePath()} {
    if (paths.home.isEmpty())
        paths.home = QDir(directory).absolutePath();
}

int Home::port() const {
    const int named = qEnvironmentVariableIntValue("KORVEL_HOOK_PORT");
    return readObject(paths.ports()).value("agent"_L1).toInt(named > 0 ? named : DEFAULT_PORT);
}

QProcessEnvironment Home::environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, paths.home);
    environment.insert(u"KORVEL_HOOK_PORT"_s, QString::number(port()));
    environment.insert(u"SSL_CERT_FILE"_s, authorityFile());
    for (const QLatin1StringView name : {"KORVEL_HOME"_L1, "KORVEL_AGENT_BIN"_L1, "KORVEL_TRAY_AUTOMATION"_L1})
        environment.remove(name);
    return environment;
}

bool Home::setScenario(const QJsonObject &scenario) {
    const bool written = Scenario::write(paths, scenario);
    AccountServerProcess(paths).awaitScenario();
    return written;
}

bool Home::changeScenario(const QJsonObject &patch) { return setScenario(mergePatch(scenario(), patch)); }

QJsonObject Home::scenario() const { return Scenario(paths).values(); }

bool Home::signIn(const QString &account) {
    return AgentConfig(configPath())
        .change({{u"agentToken"_s, u"simulated-token-"_s + randomHex(8)},
                 {u"agentId"_s, u"simulated-agent-"_s + randomHex(4)},
                 {u"username"_s, account},
                 {u"loginName"_s, account}});
}

bool Home::signOut() {
    return AgentConfig(configPath())
        .change({{u"agentToken"_s, QJsonValue::Null},
                 {u"agentId"_s, QJsonValue::Null},
                 {u"username"_s, QJsonValue::Null},
                 {u"loginName"_s, QJsonValue::Null}});
}

QString Home::account() const { return readObject(configPath()).value("username"_L1).toString(); }

Encryption Home::encryption() const { return Encryption(paths, AgentConfig(configPath())); }

bool Home::startAccountServer() { return AccountServerProcess(paths).start(environment()); }

bool Home::stopAccountServer() { return AccountServerProcess(paths).stop(); }

QString Home::accountServer() const { return AccountServerProcess(paths).address(); }

QString Home::authorityFile() { return simulatedRoot() + "/etc/certificates/authority.pem"_L1; }

bool Home::placeAgent() const {
    return placeProgram(simulatedRoot() + "/usr/local/bin/korvel-agent"_L1, paths.agentProgram());
}

bool Home::installJobFile() {
    const QJsonObject environment{{u"KORVEL_HOOK_PORT"_s, QString::number(port())}};
    return placeAgent() && writeAgentJob(paths, paths.agentProgram(), environment);
}

QString Home::assembleBundle(const QString &trayProgram) {
    const QString contents = paths.bundle() + "/Contents"_L1;
    const QString tray = contents + "/MacOS/korvel-tray"_L1;
    const QString exchange = "/Helpers/korvel-exchange"_L1;
    const QString built = QFileInfo(QFileInfo(trayProgram).canonicalFilePath()).path() + u"/.."_s + exchange;
    const bool whole = placeProgram(trayProgram, tray) && placeProgram(built, contents + exchange) && placeAgent();
    return whole ? tray : QString();
}

int Home::launchctl(const QStringList &arguments) {
    QProcess tool;
    tool.setProcessEnvironment(environment());
    tool.setProcessChannelMode(QProcess::ForwardedChannels);
    tool.start(simulatedRoot() + "/bin/launchctl"_L1, arguments);
    return tool.waitForFinished(-1) && tool.exitStatus() == QProcess::NormalExit ? tool.exitCode() : -1;
}

QString Home::domain() { return u"gui/%1"_s.arg(::getuid()); }

QList<QJsonObject> Home::requests() const { return readLines(paths.requestLog()); }

QList<QJsonObject> Home::serverRequests() const { return readLines(paths.serverLog()); }

QList<QJsonObject> Home::agentCalls() const { return readLines(paths.agentLog()); }

QStringList Home::opened() const {
    QStringList urls;
    for (const QJsonObject &line : readLines(paths.openedLog()))
        urls.append(line.value("url"_L1).toString());
    return urls;
}

QList<QJsonObject> Home::installedPackages() const { return readLines(paths.installed()); }

qint64 Home::agentPid() const { return LaunchJob(paths, AGENT_LABEL).process(); }

bool Home::killAgent(int signal) {
    const qint64 process = agentPid();
    return process != 0 && ::kill(pid_t(process), signal) == 0;
}

bool Home::shutDown() {
    endWithin(2000, paths, SIGKILL, isTool); // a waiting tool could load a job later
    for (const QString &label : LaunchJob::labels(paths))
        LaunchJob(paths, label).unload();
    return endWithin(2000, paths, SIGTERM, isLasting) || endWithin(2000, paths, SIGKILL, isLasting);
}

} // namespace korvel::sim
