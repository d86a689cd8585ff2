#pragma once

#include "simulator/agent/permissions.h"
#include "simulator/server/http_message.h"

#include <QElapsedTimer>
#include <QTimer>

namespace korvel::sim {

/// POST /perms/request: simulates the system's prompts and the user's answers, as the scenario says.
class AgentPermissions {
public:
    explicit AgentPermissions(const HomePaths &paths);

    /// Shows a prompt for each undetermined permission in turn, then responds with the report. A second request
    /// meanwhile gets the same response.
    void request(const Respond &respond);

private:
    void openNextPrompt();
    void checkPrompt();

    HomePaths paths;
    Permissions permissions;
    QStringList prompted;    ///< In the current round. The last one's prompt is open.
    QElapsedTimer promptAge; ///< Of the open prompt.
    QList<Respond> waiting;  ///< Requests that get the report after the round.
    QTimer checks;
};

} // namespace korvel::sim
