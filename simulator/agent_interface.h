#pragma once

#include "simulator/agent_browser_sign_in.h"
#include "simulator/agent_config.h"
#include "simulator/agent_encryption.h"
#include "simulator/agent_permissions.h"
#include "simulator/http_server.h"
#include "simulator/scenario.h"

#include <QElapsedTimer>

#include <functional>
#include <map>

namespace korvel::sim {

// The agent's name and version as it reports them.
inline QString agentVersion() { return QStringLiteral("korvel-agent/1.4.2"); }

// The agent's loopback HTTP interface: logs every request, plays the scenario's fault for it, checks the token, and
// answers by route.
class AgentInterface {
public:
    using Route = std::function<void(const HttpRequest &, const Scenario &, const Respond &)>;

    AgentInterface(HomePaths paths, AgentConfig config);

    // Listens on 127.0.0.1; false when the port is not to be had.
    bool listen(int port);

private:
    void receive(HttpConnection &connection, const HttpRequest &request);
    void log(const HttpConnection &connection, const HttpRequest &request) const;
    QJsonObject health(const Scenario &scenario) const;
    void addRoutes();
    void answer(const HttpRequest &request, const Scenario &scenario, const Respond &respond) const;

    HomePaths paths;
    AgentConfig config;
    QByteArray token;
    QElapsedTimer uptime;
    AgentEncryption encryption;
    AgentBrowserSignIn browserSignIn;
    AgentPermissions permissions;
    std::map<std::pair<QByteArray, QByteArray>, Route> routes; // by method and path
    HttpServer server;
};

} // namespace korvel::sim
