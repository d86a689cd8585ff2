#pragma once

#include "simulator/http_message.h"
#include "simulator/permission_store.h"
#include "simulator/scenario.h"

#include <QElapsedTimer>
#include <QTimer>

namespace korvel::sim {

// The agent's side of the permissions: /perms, /perms/request, and the summary that its health report shows.
class AgentPermissions {
public:
    explicit AgentPermissions(HomePaths paths);

    // "ok" and "missing".
    QJsonObject summary(const Scenario &scenario) const;
    // Those that are not granted, or "ok" alone where the scenario says so.
    HttpAnswer list(const Scenario &scenario) const;
    // Has the system ask for each permission that is undetermined, one after the other, and answers as list() once all
    // prompts are through. A request that comes meanwhile is answered with the first. An agent that ends meanwhile
    // leaves undetermined what was not answered yet.
    void request(const Respond &respond);

private:
    void askNext();
    void lookAtPrompt();

    HomePaths paths;
    PermissionStore store;
    QStringList asked;       // in the present round; the last one's prompt is open
    QElapsedTimer promptAge; // of that one
    QList<Respond> waiting;  // for the end of the round
    QTimer look;
};

} // namespace korvel::sim
