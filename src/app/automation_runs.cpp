#include "app/automation_runs.h"

#include "account/binding.h"
#include "account/server_rules.h"
#include "app/launch_environment.h"
#include "app/model/deployment.h"
#include "app/system_parts.h"
#include "base/plain_text.h"
#include "e2ee/approval.h"
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
#include "ui/widgets/alert_window.h"
#include "ui/widgets/cn_login_window.h"
#include "ui/widgets/pair_window.h"
#include "ui/widgets/picture.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <cstdio>
#include <iostream>
#include <string>

namespace korvel {

namespace {

/// Prints one line with the reason for a failure to standard error. Returns the exit status.
int refuse(const QByteArray &why) {
    std::fprintf(stderr, "%s\n", why.constData());
    return 1;
}

/// Parses a JSON object; none if the text is anything else.
std::optional<QJsonObject> parseObject(const QByteArray &text) {
    const QJsonDocument document = QJsonDocument::fromJson(text);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

std::optional<CnLoginForm> formFor(const QString &page) {
    CnLoginForm form;
    if (page == u"register")
        form.page = Page::Register;
    else if (page == u"reset")
        form.page = Page::Reset;
    else if (page == u"code")
        form.codeMode = true;
    else if (page != u"login")
        return std::nullopt;
    return form;
}

/// Draws a visible window.
int draw(QWidget &window, const QString &file, const char *mode) {
    if (savePicture(pictureOf(window), file))
        return 0;
    return refuse(QByteArray(mode) + ": cannot write " + file.toUtf8());
}

PairView previewOf(const QJsonObject &report) {
    PairState pairing{.pairSawCode = true, .pairPreview = true};
    return pairView(report, pairing, {}).view;
}

/// Draws one page of the sign-in window ("login", "code", "register" or "reset") to a PNG file, without a display.
/// Returns the exit status: 1 for an unknown page or an unwritable file, with the reason on standard error.
int renderLogin(const QString &page, const QString &file) {
    const auto form = formFor(page);
    if (!form)
        return refuse("--login-render: the page is \"login\", \"code\", \"register\" or \"reset\"");
    const PictureApplication app;
    CnLoginWindow window([](const LoginInput &) {});
    window.apply(cnLoginView(*form));
    window.show();
    window.activateWindow();
    window.focus(firstEmptyField(*form));
    return draw(window, file, "--login-render");
}

/// Draws an encryption window in the same way. `json` is an encryption report for "pair" and an approval request for
/// "approve"; the request's key "error" describes the last failed attempt.
int renderE2ee(const QString &kind, const QString &file, const QByteArray &json) {
    if (kind != u"pair" && kind != u"approve")
        return refuse("--e2ee-render: the kind is \"pair\" or \"approve\"");
    const auto given = parseObject(json);
    if (!given)
        return refuse("--e2ee-render: the last argument is not a JSON object");
    const PictureApplication app;
    if (kind == u"pair") {
        PairWindow window({});
        window.present(previewOf(*given), OpenedBy::User);
        return draw(window, file, "--e2ee-render");
    }
    AlertDialog alert(approveAlert(*given, given->value(u"error").toString()), [](const AlertAnswer &) {});
    alert.show();
    alert.activateWindow();
    return draw(alert, file, "--e2ee-render");
}

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
    const QString server = args.size() > 3 ? normalizeServer(args.at(3)).value_or(args.at(3))
                                           : serverOf(config, agentConfig.readCfg().server);
    QtPrograms programs(simulatedRoot());
    Launchctl services(programs, paths.uid);
    QtScheduler scheduler; // its destructor waits for a running repair, which uses the two above
    const auto desktop = makeDesktop(programs, !simulatedRoot().isEmpty());
    ExchangeClient servers(programs, scheduler, exchangeProgram());
    TrayState state;
    const AgentCommand command(programs, scheduler, bundlePath(), std::nullopt);
    Unattended nobody;
    Repair repair(state, config, paths, command, programs, scheduler, nobody, nobody, nobody);
    AgentControl agent(state, config, paths, agentConfig, services, programs, *desktop, scheduler, nobody, repair);
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
    const AgentCfg cfg = AgentConfig(paths).readCfg();
    const Instant now = Clock::now();
    TrayState state;
    const bool responds = health.value(u"ok").toBool(true);
    applyHealth(state, responds ? Result(health) : Error{ErrorKind::Refused, {}},
                {.now = now, .bound = cfg.bound(), .username = cfg.username});
    if (responds)
        applyPermReply(state.permissions, health.value(u"perms").toObject());
    const MenuView view = menuView({.state = state,
                                    .isCn = config.IS_CN,
                                    .version = config.VERSION,
                                    .timing = timingOf(state.health, now),
                                    .bound = cfg.bound(),
                                    .plistExists = plistExists(paths),
                                    .server = serverOf(config, cfg.server)});
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
