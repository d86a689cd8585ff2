#pragma once

#include "simulator/agent/agent_config.h"
#include "simulator/agent/agent_encryption.h"
#include "simulator/agent/agent_permissions.h"
#include "simulator/home/scenario.h"
#include "simulator/server/accounts.h"
#include "simulator/server/http_server.h"

#include <QElapsedTimer>
#include <QTimer>
#include <functional>
#include <map>

namespace korvel::sim {

/// The agent's loopback HTTP interface. Logs each request, applies the scenario's fault, checks the token and responds
/// by route.
class AgentInterface {
public:
    explicit AgentInterface(const HomePaths &home);

    /// Listens on 127.0.0.1; false if the port is not available.
    bool listen(int port) { return server.listenOnLoopback(port); }

private:
    using Route = std::function<void(const HttpRequest &, const Scenario &, const Respond &)>;

    void addRoutes();
    void receive(HttpConnection &connection, const HttpRequest &request);
    void log(const HttpConnection &connection, const HttpRequest &request) const;
    void respondTo(const HttpRequest &request, const Scenario &scenario, const Respond &respond) const;
    QJsonObject health(const Scenario &scenario) const;
    QJsonObject beginSignIn(const HttpRequest &request);
    HttpResponse signInStatus(const HttpRequest &request);
    void collectSignIn();

    HomePaths paths;
    AgentConfig config;
    QByteArray token;
    QElapsedTimer uptime;
    AgentEncryption encryption;
    AgentPermissions permissions;
    Accounts accounts;
    std::map<QByteArray, Route> routes; ///< By method and path.
    HttpServer server;
    QTimer signInWatch;
};

} // namespace korvel::sim
