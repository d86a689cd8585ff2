#pragma once

#include "simulator/home/scenario.h"
#include "simulator/server/accounts.h"
#include "simulator/server/http_server.h"

#include <map>

namespace korvel::sim {

/// The account server of a home: HTTP over TLS, with a log, and with the faults and the certificate of the scenario's
/// "server".
class AccountServer {
public:
    explicit AccountServer(const HomePaths &home);

    /// Listens on a port of 127.0.0.1, except while the scenario's server refuses. False if the port is not available.
    bool listen(int port);

private:
    using Route = HttpResponse (AccountServer::*)(const HttpRequest &);

    void receive(HttpConnection &connection, const HttpRequest &request);
    void log(const HttpRequest &request) const;
    HttpResponse responseTo(const HttpRequest &request);

    HttpResponse logIn(const HttpRequest &request);
    HttpResponse unbind(const HttpRequest &request);
    HttpResponse showSignIn(const HttpRequest &request);
    HttpResponse submitSignIn(const HttpRequest &request);
    HttpResponse manifest(const HttpRequest &request);
    HttpResponse package(const HttpRequest &request);

    HomePaths paths;
    Accounts accounts;
    std::map<QByteArray, Route> routes; ///< By method and path.
    HttpServer server;
};

} // namespace korvel::sim
