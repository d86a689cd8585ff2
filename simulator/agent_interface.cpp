#include "simulator/agent_interface.h"

#include "simulator/account_store.h"
#include "simulator/fault.h"
#include "simulator/files.h"

#include <QCoreApplication>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const QByteArray TOKEN_HEADER = "x-korvel-token";

HttpAnswer refusal(int status, const QString &error) {
    return HttpAnswer::json({{u"ok"_s, false}, {u"error"_s, error}}, status);
}

} // namespace

AgentInterface::AgentInterface(HomePaths paths, AgentConfig config)
    : paths(std::move(paths)), config(std::move(config)), token(this->config.ensureLocalToken().toUtf8()),
      encryption(Encryption(this->paths, this->config)), browserSignIn(this->paths, this->config),
      permissions(this->paths),
      server([this](HttpConnection &connection, const HttpRequest &request) { receive(connection, request); }) {
    uptime.start();
    addRoutes();
}

bool AgentInterface::listen(int port) { return server.listenOnLoopback(port); }

void AgentInterface::addRoutes() {
    routes[{"GET", "/health"}] = [this](const HttpRequest &, const Scenario &scenario, const Respond &respond) {
        respond(HttpAnswer::json(health(scenario)));
    };
    routes[{"POST", "/auth/start"}] = [this](const HttpRequest &request, const Scenario &, const Respond &respond) {
        respond(browserSignIn.start(request));
    };
    routes[{"GET", "/auth/status"}] = [this](const HttpRequest &request, const Scenario &, const Respond &respond) {
        respond(browserSignIn.status(request));
    };
    routes[{"GET", "/perms"}] = [this](const HttpRequest &, const Scenario &scenario, const Respond &respond) {
        respond(permissions.list(scenario));
    };
    routes[{"POST", "/perms/request"}] = [this](const HttpRequest &, const Scenario &, const Respond &respond) {
        permissions.request(respond);
    };
    for (const QByteArray &path : Encryption::endpoints())
        routes[{"POST", path}] = [this](const HttpRequest &request, const Scenario &scenario, const Respond &respond) {
            encryption.answer(request, scenario, respond);
        };
}

// All is well by default, then the scenario's "offline", "connectMs" and "health".
QJsonObject AgentInterface::health(const Scenario &scenario) const {
    const QJsonObject stored = config.read();
    const QString agentToken = stored.value("agentToken"_L1).toString();
    const auto credential = credentialOf(AccountStore(paths).read(), agentToken);
    const bool dead = !agentToken.isEmpty() && credential && credential->released;
    const bool online = !agentToken.isEmpty() && !dead && !scenario.values().value("offline"_L1).toBool() &&
                        uptime.elapsed() >= milliseconds(scenario.values(), "connectMs"_L1, 300);
    const QJsonObject report{{u"ok"_s, true},
                             {u"online"_s, online},
                             {u"ver"_s, agentVersion()},
                             {u"sessions"_s, 0},
                             {u"account"_s, stored.value("username"_L1).toString()},
                             {u"authDead"_s, dead},
                             {u"accountGone"_s, false},
                             {u"e2ee"_s, encryption.report(online)},
                             {u"perms"_s, permissions.summary(scenario)}};
    return mergePatch(report, scenario.section("health"_L1));
}

void AgentInterface::receive(HttpConnection &connection, const HttpRequest &request) {
    log(connection, request);
    const Scenario scenario = Scenario::read(paths);
    const Fault fault = faultFor(scenario, u"agent"_s, scenario.section("faults"_L1), request.path());
    answerUnder(fault, connection, [&](const Respond &respond) { answer(request, scenario, respond); });
}

void AgentInterface::log(const HttpConnection &connection, const HttpRequest &request) const {
    const QByteArray sent = request.header(TOKEN_HEADER);
    appendLine(paths.requestLog(), {
                                       {u"time"_s, timeNow()},
                                       {u"method"_s, QString::fromUtf8(request.method)},
                                       {u"path"_s, QString::fromUtf8(request.target)},
                                       {u"token"_s, sent.isEmpty()  ? u"absent"_s
                                                    : sent == token ? u"right"_s
                                                                    : u"wrong"_s},
                                       {u"contentType"_s, QString::fromUtf8(request.header("content-type"))},
                                       {u"body"_s, QString::fromUtf8(request.body)},
                                       {u"connection"_s, connection.number()},
                                       {u"request"_s, connection.requestNumber()},
                                       {u"agent"_s, QCoreApplication::applicationPid()},
                                   });
}

void AgentInterface::answer(const HttpRequest &request, const Scenario &scenario, const Respond &respond) const {
    if (request.header(TOKEN_HEADER) != token)
        return respond(refusal(401, u"The local token is missing or wrong"_s));
    const auto route = routes.find({request.method, request.path()});
    if (route == routes.end())
        return respond(refusal(404, u"There is no such endpoint"_s));
    route->second(request, scenario, respond);
}

} // namespace korvel::sim
