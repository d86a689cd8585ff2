#include "app/automation_runs.h"

#include "account/server_rules.h"
#include "app/bundle.h"
#include "app/deployment.h"
#include "platform/json_values.h"
#include "platform/qt_programs.h"
#include "platform/qt_scheduler.h"
#include "service/agent_command.h"
#include "service/agent_config.h"
#include "status/health.h"
#include "ui/menu_view.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <cstdio>
#include <iostream>
#include <string>

namespace korvel {

namespace {

/// One line of standard input without its end; empty when there is none.
QByteArray readLine() {
    std::string line;
    std::getline(std::cin, line);
    return QByteArray::fromStdString(line);
}

void print(const QByteArray &text) {
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
    std::fflush(stdout);
}

int refuse(const char *why) {
    std::fprintf(stderr, "%s\n", why);
    return 1;
}

std::optional<QJsonObject> parseObject(const QByteArray &text) {
    const QJsonDocument document = QJsonDocument::fromJson(text);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

int runMenuDump(const FixedConfig &config, const Paths &paths) {
    const auto dump = menuDump(readLine(), config, paths);
    if (!dump)
        return refuse("--menu-dump: standard input is not one line with a JSON object");
    print(*dump);
    return 0;
}

int runAgentJsonMode() {
    std::optional<QJsonObject> reply;
    if (const auto request = parseObject(readLine())) {
        QtScheduler scheduler;
        QtPrograms programs(standInRoot());
        AgentCommand agent(programs, scheduler, bundlePath(), agentOverride());
        agent.runAgentJson(*request, [&reply](std::optional<QJsonObject> r) {
            reply = std::move(r);
            QCoreApplication::quit();
        });
        QCoreApplication::exec();
    }
    print((reply ? QJsonDocument(*reply).toJson(QJsonDocument::Compact) : QByteArray("null")) + '\n');
    return reply ? 0 : 1;
}

} // namespace

std::optional<QByteArray> menuDump(const QByteArray &description, const FixedConfig &config, const Paths &paths) {
    const auto health = parseObject(description.trimmed().isEmpty() ? QByteArray("{}") : description);
    if (!health)
        return std::nullopt;
    const QJsonObject cfg = AgentConfig(paths).readCfg();
    const bool isBound = bound(cfg);
    const Instant now = Clock::now();
    TrayState state;
    const bool answered = health->value(u"ok").toBool(true);
    applyHealth(state, answered ? health : std::nullopt,
                {.now = now, .bound = isBound, .username = cfgText(cfg, u"username")});
    if (answered)
        state.permissions.permItems =
            jsonObjects(health->value(u"perms").toObject().value(u"items")).value_or(QList<QJsonObject>());
    const MenuView view = menuView({.state = state,
                                    .config = config,
                                    .now = now,
                                    .bound = isBound,
                                    .plistExists = plistExists(paths),
                                    .server = serverOf(config, cfg)});
    QByteArray lines;
    for (const MenuEntry &entry : view.entries)
        lines +=
            entry.isSeparator() ? QByteArray("---\n") : (entry.enabled ? "on  " : "off ") + entry.title.toUtf8() + '\n';
    return lines;
}

int runAutomation(AutomationMode mode, int &argc, char **argv, const FixedConfig &config, const Paths &paths) {
    const QCoreApplication app(argc, argv);
    switch (mode) {
    case AutomationMode::MenuDump:
        return runMenuDump(config, paths);
    case AutomationMode::AgentJson:
        return runAgentJsonMode();
    case AutomationMode::Login:
    case AutomationMode::E2eeRender:
    case AutomationMode::LoginRender:
        break;
    }
    return refuse("this build has no such automation mode");
}

} // namespace korvel
