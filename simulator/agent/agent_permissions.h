#pragma once

#include "simulator/agent/permissions.h"
#include "simulator/server/http_message.h"

#include <QElapsedTimer>
#include <QTimer>

namespace korvel::sim {

/// POST /perms/request: the system's prompts, as the scenario has the user answer them.
class AgentPermissions {
public:
    explicit AgentPermissions(const HomePaths &paths);

    /// Has the system ask for each permission that is undetermined, one after the other, and responds with the report
    /// once all prompts are through; so does a request that comes meanwhile.
    void request(const Respond &respond);

private:
    void openNextPrompt();
    void checkPrompt();

    HomePaths paths;
    Permissions permissions;
    QStringList prompted;    ///< In the present round; the last one's prompt is open.
    QElapsedTimer promptAge; ///< Of that one.
    QList<Respond> waiting;  ///< For the end of the round.
    QTimer checks;
};

} // namespace korvel::sim
