#include "simulator/agent/agent_interface.h"

#include "simulator/agent/agent_config.h"
#include "simulator/agent/agent_program.h"
#include "simulator/agent/sign_in.h"
#include "simulator/home/files.h"
#include "simulator/server/account_server_program.h"
#include "simulator/server/fault.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QUrl>
#include <chrono>

namespace korvel::sim {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto WATCH_INTERVAL = 100ms;

HttpResponse refusal(int status, const QString &error) {
    return HttpResponse::json({{u"ok"_s, false}, {u"error"_s, error}}, status);
}

} // namespace

AgentInterface::AgentInterface(const HomePaths &home)
    : paths(home), config(AgentConfig::ofThisProcess()), token(config.ensureLocalToken().toUtf8()),
      encryption(Encryption(paths, config)), permissions(paths), accounts(paths),
      server([this](HttpConnection &connection, const HttpRequest &request) { receive(connection, request); }) {
    uptime.start();
    addRoutes();
    // Binds the Mac to a user who has signed in in the browser, whether or not the tray polls.
    QObject::connect(&signInWatch, &QTimer::timeout, &signInWatch, [this] { collectSignIn(); });
    signInWatch.start(WATCH_INTERVAL); // a sign-in of an earlier agent may be pending
}

void AgentInterface::addRoutes() {
    routes["GET /health"] = [this](const HttpRequest &, const Scenario &scenario, const Respond &respond) {
        respond(HttpResponse::json(health(scenario)));
    };
    routes["POST /auth/start"] = [this](const HttpRequest &request, const Scenario &, const Respond &respond) {
        respond(HttpResponse::json(beginSignIn(request)));
    };
    routes["GET /auth/status"] = [this](const HttpRequest &request, const Scenario &, const Respond &respond) {
        respond(signInStatus(request));
    };
    routes["GET /perms"] = [this](const HttpRequest &, const Scenario &, const Respond &respond) {
        respond(HttpResponse::json(Permissions(paths).report()));
    };
    routes["POST /perms/request"] = [this](const HttpRequest &, const Scenario &, const Respond &respond) {
        permissions.request(respond);
    };
    for (const QByteArray &path : Encryption::endpoints())
        routes["POST " + path] = [this](const HttpRequest &request, const Scenario &scenario, const Respond &respond) {
            encryption.respondTo(request, scenario, respond);
        };
}

/// A healthy report, changed by the scenario's "offline", "connectMs" and "health".
QJsonObject AgentInterface::health(const Scenario &scenario) const {
    const QString agentToken = config.text("agentToken"_L1);
    const auto credential = accounts.credential(agentToken);
    const bool dead = credential && credential->released;
    const bool online = !agentToken.isEmpty() && !dead && !scenario.values().value("offline"_L1).toBool() &&
                        uptime.elapsed() >= milliseconds(scenario.values(), "connectMs"_L1, 300);
    QJsonObject summary = Permissions(paths).report();
    summary.remove("items"_L1);
    const QJsonObject report{{u"ok"_s, true},
                             {u"online"_s, online},
                             {u"ver"_s, AGENT_VERSION},
                             {u"sessions"_s, 0},
                             {u"account"_s, config.text("username"_L1)},
                             {u"authDead"_s, dead},
                             {u"accountGone"_s, false},
                             {u"e2ee"_s, encryption.report(online)},
                             {u"perms"_s, summary}};
    return mergePatch(report, scenario.section("health"_L1));
}

QJsonObject AgentInterface::beginSignIn(const HttpRequest &request) {
    const QString device = QJsonDocument::fromJson(request.body)["device"_L1].toString();
    const QString id = accounts.beginSignIn(device.isEmpty() ? macName() : device);
    signInWatch.start(WATCH_INTERVAL);
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(id));
    return {{u"id"_s, id}, {u"url"_s, u"https://%1/signin?id="_s.arg(AccountServerProcess(paths).address()) + encoded}};
}

HttpResponse AgentInterface::signInStatus(const HttpRequest &request) {
    collectSignIn();
    const QJsonObject found = accounts.signIn(request.queryField(u"id"_s));
    if (found.isEmpty())
        return refusal(404, u"There is no such sign-in"_s);
    QJsonObject status{{u"status"_s, found.value("status"_L1)}};
    if (const QJsonValue account = found.value("account"_L1); !account.toString().isEmpty())
        status.insert("user"_L1, account);
    if (const QJsonValue error = found.value("error"_L1); !error.toString().isEmpty())
        status.insert("error"_L1, error);
    return HttpResponse::json(status);
}

void AgentInterface::collectSignIn() {
    if (const QString account = accounts.collectSignIn(); !account.isEmpty())
        bindMac(paths, account);
    if (!accounts.isPending(accounts.newestSignIn()))
        signInWatch.stop();
}

void AgentInterface::receive(HttpConnection &connection, const HttpRequest &request) {
    log(connection, request);
    const Scenario scenario(paths);
    speakAgentLanguage(scenario);
    respondUnder(scenario, u"agent"_s, scenario.section("faults"_L1), request.path(), connection,
                 [&](const Respond &respond) { respondTo(request, scenario, respond); });
}

void AgentInterface::log(const HttpConnection &connection, const HttpRequest &request) const {
    const QByteArray sent = request.headers.value("x-korvel-token");
    const QString kind = sent.isEmpty() ? u"absent"_s : sent == token ? u"right"_s : u"wrong"_s;
    appendLine(paths.requestLog(), {{u"time"_s, timeNow()},
                                    {u"method"_s, QString::fromUtf8(request.method)},
                                    {u"path"_s, QString::fromUtf8(request.target)},
                                    {u"token"_s, kind},
                                    {u"contentType"_s, QString::fromUtf8(request.headers.value("content-type"))},
                                    {u"body"_s, QString::fromUtf8(request.body)},
                                    {u"connection"_s, connection.number()},
                                    {u"request"_s, connection.requestNumber()},
                                    {u"agent"_s, QCoreApplication::applicationPid()}});
}

void AgentInterface::respondTo(const HttpRequest &request, const Scenario &scenario, const Respond &respond) const {
    if (request.headers.value("x-korvel-token") != token)
        return respond(refusal(401, u"The local token is missing or wrong"_s));
    const auto route = routes.find(request.method + ' ' + request.path());
    if (route == routes.end())
        return respond(refusal(404, u"There is no such endpoint"_s));
    route->second(request, scenario, respond);
}

} // namespace korvel::sim
