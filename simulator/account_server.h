#pragma once

#include "simulator/account_store.h"
#include "simulator/http_server.h"
#include "simulator/scenario.h"
#include "simulator/test_authority.h"

#include <map>

namespace korvel::sim {

// The account server of a home: HTTP over TLS, logged, with the faults and the certificate that the scenario's "server"
// asks for at each connection and request.
class AccountServer {
public:
    explicit AccountServer(HomePaths paths);

    // Listens on a port of 127.0.0.1, or, while the scenario's server refuses, does not. False when the port is not to
    // be had.
    bool listen(int port);

private:
    using Route = HttpAnswer (AccountServer::*)(const HttpRequest &) const;

    std::unique_ptr<QTcpSocket> secureSocket(qintptr descriptor) const;
    void receive(HttpConnection &connection, const HttpRequest &request);
    void log(const HttpRequest &request) const;
    HttpAnswer answer(const HttpRequest &request) const;

    HttpAnswer logIn(const HttpRequest &request) const;
    HttpAnswer unbind(const HttpRequest &request) const;
    HttpAnswer showSignIn(const HttpRequest &request) const;
    HttpAnswer submitSignIn(const HttpRequest &request) const;
    HttpAnswer manifest(const HttpRequest &request) const;
    HttpAnswer package(const HttpRequest &request) const;

    HomePaths paths;
    TestAuthority authority;
    AccountStore store;
    std::map<std::pair<QByteArray, QByteArray>, Route> routes; // by method and path
    HttpServer server;
};

} // namespace korvel::sim
