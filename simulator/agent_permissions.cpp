#include "simulator/agent_permissions.h"

#include "simulator/agent_language.h"

#include <utility>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int LOOK_EVERY_MS = 20;

bool isUndetermined(const Permissions &permissions, const QString &name) {
    return stateOf(permissions, name) == "undetermined"_L1;
}

} // namespace

AgentPermissions::AgentPermissions(HomePaths paths) : paths(std::move(paths)), store(this->paths) {
    look.setInterval(LOOK_EVERY_MS);
    QObject::connect(&look, &QTimer::timeout, &look, [this] { lookAtPrompt(); });
}

QJsonObject AgentPermissions::summary(const Scenario &scenario) const {
    QJsonObject report;
    store.change([&](const Permissions &permissions, const PermissionRules &rules) {
        report = permissionReport(permissions, rules, agentSpeaksChinese(scenario));
        return true;
    });
    report.remove("items"_L1);
    return report;
}

HttpAnswer AgentPermissions::list(const Scenario &scenario) const {
    QJsonObject report;
    store.change([&](const Permissions &permissions, const PermissionRules &rules) {
        report = permissionReport(permissions, rules, agentSpeaksChinese(scenario));
        if (rules.partial)
            report = {{u"ok"_s, report.value("ok"_L1)}};
        return true;
    });
    return HttpAnswer::json(report);
}

void AgentPermissions::request(const Respond &respond) {
    waiting.append(respond);
    if (waiting.size() > 1)
        return;
    asked.clear();
    askNext();
}

void AgentPermissions::askNext() {
    QString next;
    store.change([&](const Permissions &permissions, const PermissionRules &rules) {
        for (const QString &name : permissionNames(rules))
            if (next.isEmpty() && isUndetermined(permissions, name) && !asked.contains(name))
                next = name;
        return true;
    });
    if (!next.isEmpty()) {
        asked.append(next);
        promptAge.start();
        return look.start();
    }
    look.stop();
    const HttpAnswer answer = list(Scenario::read(paths));
    for (const Respond &respond : std::exchange(waiting, {}))
        respond(answer);
}

void AgentPermissions::lookAtPrompt() {
    bool isOpen = true;
    store.change([&](Permissions &permissions, const PermissionRules &rules) {
        const QString &name = asked.last();
        if (isUndetermined(permissions, name) && promptAge.elapsed() >= rules.promptMs)
            permissions.states.insert(name, promptAnswer(rules, name));
        isOpen = isUndetermined(permissions, name);
        return true;
    });
    if (!isOpen)
        askNext();
}

} // namespace korvel::sim
