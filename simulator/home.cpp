#include "simulator/home.h"

#include "simulator/account_server_program.h"
#include "simulator/agent_config.h"
#include "simulator/files.h"
#include "simulator/home_cleaning.h"
#include "simulator/install_tools.h"
#include "simulator/job_file.h"
#include "simulator/launch_job.h"
#include "simulator/scenario.h"
#include "simulator/test_authority.h"

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

AgentConfig configOf(const HomePaths &paths) { return AgentConfig(paths.home + "/.korvel"_L1); }

// Puts a program at a path as a file of its own there: a second name of the same file, or else a copy.
bool placeProgram(const QString &program, const QString &path) {
    const QString source = QFileInfo(program).canonicalFilePath();
    if (source.isEmpty() || !QDir().mkpath(QFileInfo(path).path()))
        return false;
    if (QFileInfo::exists(path) && !QFile::remove(path))
        return false;
    return ::link(QFile::encodeName(source).constData(), QFile::encodeName(path).constData()) == 0 ||
           QFile::copy(source, path);
}

} // namespace

Home::Home(const QString &directory) : paths{QFileInfo(directory).canonicalFilePath()} {
    if (paths.home.isEmpty())
        paths.home = QDir(directory).absolutePath();
}

QString Home::configPath() const { return configOf(paths).path(); }

int Home::port() const {
    QFile file(paths.portFile());
    if (file.open(QIODevice::ReadOnly))
        return file.readAll().toInt();
    const int port = qEnvironmentVariableIntValue("KORVEL_HOOK_PORT");
    return port > 0 ? port : DEFAULT_PORT;
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

QJsonObject Home::scenario() const { return Scenario::read(paths).values(); }

bool Home::signIn(const QString &account) { return configOf(paths).signIn(account); }

bool Home::signOut() { return configOf(paths).signOut(); }

QString Home::account() const { return configOf(paths).read().value("username"_L1).toString(); }

Encryption Home::encryption() const { return Encryption(paths, configOf(paths)); }

PermissionControl Home::permissions() const { return PermissionControl(PermissionStore(paths)); }

bool Home::startAccountServer() { return AccountServerProcess(paths).start(environment()); }

bool Home::stopAccountServer() { return AccountServerProcess(paths).stop(); }

QString Home::accountServer() const { return AccountServerProcess(paths).address(); }

QString Home::authorityFile() const { return TestAuthority(paths).file(); }

ServerAccounts Home::accounts() const { return ServerAccounts(AccountStore(paths)); }

ServerUpdates Home::updates() const { return ServerUpdates(paths); }

bool Home::placeAgent() const {
    return placeProgram(standInRoot() + "/usr/local/bin/korvel-agent"_L1, paths.agentProgram());
}

bool Home::installJobFile() {
    JobFile job = agentJobFile(paths, paths.agentProgram());
    job.environment.insert(u"KORVEL_HOOK_PORT"_s, QString::number(port()));
    return placeAgent() && replaceFile(paths.jobFile(), jobFileText(job), 0644);
}

QString Home::assembleBundle(const QString &trayProgram) {
    const QString tray = paths.bundle() + "/Contents/MacOS/korvel-tray"_L1;
    const QString exchange = "/Helpers/korvel-exchange"_L1;
    const QString built = QFileInfo(QFileInfo(trayProgram).canonicalFilePath()).path() + u"/.."_s + exchange;
    const bool whole =
        placeProgram(trayProgram, tray) && placeProgram(built, paths.bundle() + "/Contents"_L1 + exchange);
    return whole && placeAgent() ? tray : QString();
}

int Home::launchctl(const QStringList &arguments) {
    QProcess tool;
    tool.setProcessEnvironment(environment());
    tool.setProcessChannelMode(QProcess::ForwardedChannels);
    tool.start(standInRoot() + "/bin/launchctl"_L1, arguments);
    if (!tool.waitForFinished(-1) || tool.exitStatus() != QProcess::NormalExit)
        return -1;
    return tool.exitCode();
}

QString Home::domain() { return u"gui/%1"_s.arg(::getuid()); }

QString Home::agentTarget() { return domain() + u'/' + agentLabel(); }

QList<QJsonObject> Home::requests() const { return readLines(paths.requestLog()); }

QList<QJsonObject> Home::serverRequests() const { return readLines(paths.serverLog()); }

QList<QJsonObject> Home::toolCalls() const { return readLines(paths.toolLog()); }

QList<QJsonObject> Home::agentCalls() const { return readLines(paths.agentLog()); }

QStringList Home::opened() const {
    QStringList urls;
    for (const QJsonObject &line : readLines(paths.openedLog()))
        urls.append(line.value("url"_L1).toString());
    return urls;
}

QList<QJsonObject> Home::installedPackages() const { return sim::installedPackages(paths); }

qint64 Home::agentPid() const { return LaunchJob(paths, agentLabel()).process(); }

bool Home::killAgent(int signal) {
    const qint64 process = agentPid();
    return process != 0 && ::kill(pid_t(process), signal) == 0;
}

bool Home::shutDown() { return endAllOf(paths); }

} // namespace korvel::sim
