#include "app/automation_runs.h"

#include "account/binding.h"
#include "account/server_rules.h"
#include "app/automation_output.h"
#include "app/automation_render.h"
#include "app/launch_environment.h"
#include "app/model/deployment.h"
#include "app/system_parts.h"
#include "base/plain_text.h"
#include "permissions/permission_rules.h"
#include "platform/net/exchange_client.h"
#include "platform/qt/qt_programs.h"
#include "platform/qt/qt_scheduler.h"
#include "service/agent_command.h"
#include "service/agent_config.h"
#include "service/agent_control.h"
#include "service/launchctl.h"
#include "service/repair.h"
#include "status/health.h"
#include "ui/menu/menu_view.h"

#include <QCoreApplication>
#include <QTimer>
#include <cstdio>
#include <iostream>
#include <string>

namespace korvel {

namespace {

/// Reads one line from standard input, without LF or CR LF; empty if there is none.
QByteArray readLine() {
    std::string line;
    std::getline(std::cin, line);
    if (line.ends_with('\r'))
        line.pop_back();
    return QByteArray::fromStdString(line);
}

void print(const QByteArray &text) {
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
    std::fflush(stdout);
}

int runMenuDump(const FixedConfig &config, const Paths &paths) {
    const auto dump = menuDump(readLine(), config, paths);
    if (!dump)
        return refuse("--menu-dump: standard input is not one line with a JSON object");
    print(*dump);
    return 0;
}

int runAgentJsonMode() {
    Result<QJsonObject> reply = Error{ErrorKind::InvalidRequest, {}};
    if (const auto request = parseObject(readLine())) {
        QtScheduler scheduler;
        QtPrograms programs(simulatedRoot());
        AgentCommand agent(programs, scheduler, bundlePath(), agentOverride());
        agent.runAgentJson(*request, [&reply](Result<QJsonObject> r) {
            reply = std::move(r);
            QCoreApplication::quit();
        });
        QCoreApplication::exec();
    }
    print((reply ? QJsonDocument(reply.value()).toJson(QJsonDocument::Compact) : QByteArray("null")) + '\n');
    return reply ? 0 : 1;
}

/// No screen, and no agent to poll.
class Unattended final : public Notices, public Poller, public Renderer {
public:
    void showHUD(const Notice &) override {}
    void hideHUD() override {}
    void poll(std::function<void()> then) override {
        if (then)
            then();
    }
    void ignorePollsInFlight() override {}
    void stateChanged() override {}
};

/// Signs in with the account from the arguments and the password from standard input. The server is the one from the
/// arguments, else the configured one.
int runLogin(const FixedConfig &config, const Paths &paths) {
    const QStringList args = QCoreApplication::arguments();
    const QString password = QString::fromUtf8(readLine());
    const AgentConfig agentConfig(paths);
    const QString server =
        args.size() > 3 ? normalizeServer(args.at(3)).value_or(args.at(3)) : serverOf(config, agentConfig.readCfg());
    QtPrograms programs(simulatedRoot());
    Launchctl services(programs, paths.uid);
    QtScheduler scheduler; // its destructor waits for a running repair, which uses the two above
    const auto desktop = makeDesktop(programs, !simulatedRoot().isEmpty());
    ExchangeClient servers(programs, scheduler, exchangeProgram());
    TrayState state;
    const AgentCommand command(programs, scheduler, bundlePath(), std::nullopt);
    Unattended nobody;
    Repair repair(state, config, paths, command, programs, scheduler, nobody, nobody, nobody);
    AgentControl agent(state, config, paths, agentConfig, services, programs, *desktop, scheduler, nobody,
                       {.repairService = [&repair] { repair.repairService({}); }});
    ConfigWaiter configWaiter(agentConfig, scheduler);
    Binding binding(state.health, config, agentConfig, configWaiter, servers, *desktop, nobody, agent);
    int status = 1;
    QTimer::singleShot(0, [&] {
        binding.performLogin(args.at(2), password, server, [&status](const Result<QString> &message) {
            print(singleLine(message ? message.value() : message.error().detail).toUtf8() + '\n');
            status = message ? 0 : 1;
            QCoreApplication::quit();
        });
    });
    QCoreApplication::exec();
    return status;
}

} // namespace

std::optional<QByteArray> menuDump(const QByteArray &description, const FixedConfig &config, const Paths &paths) {
    const auto parsed = parseObject(description.trimmed().isEmpty() ? QByteArray("{}") : description);
    if (!parsed)
        return std::nullopt;
    const QJsonObject health = boundedHealth(*parsed);
    const QJsonObject cfg = AgentConfig(paths).readCfg();
    const bool isBound = bound(cfg);
    const Instant now = Clock::now();
    TrayState state;
    const bool responds = health.value(u"ok").toBool(true);
    applyHealth(state, responds ? Result(health) : Error{ErrorKind::Refused, {}},
                {.now = now, .bound = isBound, .username = cfgText(cfg, u"username")});
    if (responds)
        applyPermReply(state.permissions, health.value(u"perms").toObject());
    const MenuView view = menuView({.state = state,
                                    .isCn = config.IS_CN,
                                    .version = config.VERSION,
                                    .timing = timingOf(state.health, now),
                                    .bound = isBound,
                                    .plistExists = plistExists(paths),
                                    .server = serverOf(config, cfg)});
    QByteArray lines;
    for (const MenuEntry &entry : view.entries)
        lines += entry.isSeparator() ? QByteArray("---\n")
                                     : (entry.enabled ? "on  " : "off ") + (entry.title + entry.detail).toUtf8() + '\n';
    return lines;
}

int runAutomation(AutomationMode mode, int &argc, char **argv, const FixedConfig &config, const Paths &paths) {
    if (mode == AutomationMode::LoginRender)
        return renderLogin(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    if (mode == AutomationMode::E2eeRender)
        return renderE2ee(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]), argv[4]);
    const QCoreApplication app(argc, argv);
    switch (mode) {
    case AutomationMode::MenuDump:
        return runMenuDump(config, paths);
    case AutomationMode::AgentJson:
        return runAgentJsonMode();
    case AutomationMode::Login:
        return runLogin(config, paths);
    case AutomationMode::E2eeRender:
    case AutomationMode::LoginRender:
        break;
    }
    return refuse("this build has no such automation mode");
}

} // namespace korvel
