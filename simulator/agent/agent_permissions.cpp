#include "simulator/agent/agent_permissions.h"

#include "simulator/agent/agent_config.h"
#include "simulator/home/files.h"

#include <QJsonArray>
#include <chrono>
#include <utility>

namespace korvel::sim {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

AgentPermissions::AgentPermissions(const HomePaths &home) : paths(home), permissions(home) {
    QObject::connect(&checks, &QTimer::timeout, &checks, [this] { checkPrompt(); });
}

void AgentPermissions::request(const Respond &respond) {
    waiting.append(respond);
    if (waiting.size() > 1)
        return;
    prompted.clear();
    openNextPrompt();
}

void AgentPermissions::openNextPrompt() {
    for (const QString &name : Permissions::names())
        if (permissions.isUndetermined(name) && !prompted.contains(name)) {
            prompted.append(name);
            promptAge.start();
            return checks.start(20ms);
        }
    checks.stop();
    speakAgentLanguage(Scenario(paths));
    for (const Respond &respond : std::exchange(waiting, {}))
        respond(HttpResponse::json(permissions.report()));
}

void AgentPermissions::checkPrompt() {
    const QString &name = prompted.last();
    const QJsonObject settings = Scenario(paths).section("permissions"_L1);
    if (permissions.isUndetermined(name) && promptAge.elapsed() >= milliseconds(settings, "promptMs"_L1, 500)) {
        // Accessibility cannot be granted in a prompt.
        const bool refuses = name == "Accessibility"_L1 || settings.value("deny"_L1).toArray().contains(name);
        permissions.setState(name, refuses ? u"denied"_s : u"granted"_s);
    }
    if (!permissions.isUndetermined(name))
        openNextPrompt();
}

} // namespace korvel::sim
