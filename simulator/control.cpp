#include "simulator/control.h"

#include "simulator/control_account.h"
#include "simulator/control_encryption.h"
#include "simulator/control_permissions.h"
#include "simulator/control_updates.h"

#include <QJsonDocument>

#include <csignal>
#include <cstdio>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const char HELP[] = R"(usage: korvel-simulator [--home DIR] COMMAND

Drives the simulated Mac of a home directory: $HOME, or DIR.

  set PATCH            change the scenario by a JSON merge patch, e.g. set '{"offline": true}'
  reset                go back to the empty scenario, on which all goes well
  show                 print the scenario, who is signed in, and the agent's process and port
  sign-in NAME         write a sign-in of NAME into agent.json
  sign-out             remove the sign-in from agent.json
  install-job          write the agent's job file, without loading the job
  bundle TRAY          put Korvel.app with the tray program TRAY and the agent into the home; print the tray's path
  kill-agent [SIGNAL]  send a signal to the agent that launchd runs (default 9)
  requests             print the requests that the agent received, one a line
  launchctl ARGS...    run the stand-in launchctl; the agent's target is gui/UID/com.korvel.agent
  shut-down            unload every job and end what else of the simulator runs in the home
  --help               print this; docs/simulator.md lists what a scenario can hold
)";

constexpr int ANY_NUMBER = 1'000;

void printJson(const QJsonObject &object, QJsonDocument::JsonFormat format) {
    std::puts(QJsonDocument(object).toJson(format).trimmed().constData());
}

int set(Home &home, const QStringList &arguments) {
    const QJsonDocument patch = QJsonDocument::fromJson(arguments[0].toUtf8());
    if (!patch.isObject()) {
        std::fputs("korvel-simulator: the patch is not a JSON object\n", stderr);
        return USAGE;
    }
    return statusOf(home.changeScenario(patch.object()));
}

int reset(Home &home, const QStringList &) { return statusOf(home.setScenario({})); }

int show(Home &home, const QStringList &) {
    printJson(
        {
            {u"home"_s, home.path()},
            {u"scenario"_s, home.scenario()},
            {u"account"_s, home.account()},
            {u"port"_s, home.port()},
            {u"agentPid"_s, home.agentPid()},
            {u"accountServer"_s, home.accountServer()},
            {u"authority"_s, home.authorityFile()},
            {u"encryption"_s, home.encryption().state()},
        },
        QJsonDocument::Indented);
    return 0;
}

int signIn(Home &home, const QStringList &arguments) { return statusOf(home.signIn(arguments[0])); }

int signOut(Home &home, const QStringList &) { return statusOf(home.signOut()); }

int installJob(Home &home, const QStringList &) { return statusOf(home.installJobFile()); }

int bundle(Home &home, const QStringList &arguments) {
    const QString tray = home.assembleBundle(arguments[0]);
    if (!tray.isEmpty())
        std::puts(qUtf8Printable(tray));
    return statusOf(!tray.isEmpty());
}

int killAgent(Home &home, const QStringList &arguments) {
    bool isNumber = true;
    const int number = arguments.isEmpty() ? SIGKILL : arguments[0].toInt(&isNumber);
    return isNumber ? statusOf(home.killAgent(number)) : USAGE;
}

int requests(Home &home, const QStringList &) {
    for (const QJsonObject &request : home.requests())
        printJson(request, QJsonDocument::Compact);
    return 0;
}

int launchctl(Home &home, const QStringList &arguments) { return home.launchctl(arguments); }

int shutDown(Home &home, const QStringList &) { return statusOf(home.shutDown()); }

constexpr CommandEntry COMMANDS[] = {
    {"set"_L1, 1, 1, set},
    {"reset"_L1, 0, 0, reset},
    {"show"_L1, 0, 0, show},
    {"sign-in"_L1, 1, 1, signIn},
    {"sign-out"_L1, 0, 0, signOut},
    {"install-job"_L1, 0, 0, installJob},
    {"bundle"_L1, 1, 1, bundle},
    {"kill-agent"_L1, 0, 1, killAgent},
    {"requests"_L1, 0, 0, requests},
    {"launchctl"_L1, 0, ANY_NUMBER, launchctl},
    {"shut-down"_L1, 0, 0, shutDown},
};

int usage() {
    std::fputs("korvel-simulator: see korvel-simulator --help\n", stderr);
    return USAGE;
}

} // namespace

int control(const ProgramCall &call) {
    QStringList arguments = call.arguments;
    QString directory = call.paths.home;
    if (arguments.size() >= 2 && arguments[0] == "--home"_L1) {
        directory = arguments[1];
        arguments.remove(0, 2);
    }
    if (arguments.isEmpty())
        return usage();
    const QString name = arguments.takeFirst();
    if (name == "--help"_L1) {
        std::fputs(HELP, stdout);
        std::fputs(ACCOUNT_HELP, stdout);
        std::fputs(ENCRYPTION_HELP, stdout);
        std::fputs(PERMISSION_HELP, stdout);
        std::fputs(UPDATE_HELP, stdout);
        return 0;
    }
    Home home(directory);
    for (const std::span<const CommandEntry> commands : {std::span<const CommandEntry>(COMMANDS), accountCommands(),
                                                         encryptionCommands(), permissionCommands(), updateCommands()})
        for (const CommandEntry &command : commands)
            if (command.name == name && arguments.size() >= command.fewest && arguments.size() <= command.most)
                return command.run(home, arguments);
    return usage();
}

} // namespace korvel::sim
