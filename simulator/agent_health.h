#pragma once

#include "simulator/encryption.h"

#include <QJsonObject>

namespace korvel::sim {

// What the health report of an agent depends on, besides the scenario.
struct AgentSituation {
    QJsonObject config;        // agent.json
    bool signInIsDead = false; // its credential was released on the account server
    qint64 uptimeMs = 0;       // since the agent started
    Encryption encryption;
    QJsonObject permissions; // "ok" and "missing"
};

// The agent's name and version as it reports them.
QString agentVersion();

// The answer to GET /health: all is well by default, then the scenario's "offline", "connectMs" and "health".
QJsonObject healthReport(const AgentSituation &situation, const QJsonObject &scenario);

} // namespace korvel::sim
