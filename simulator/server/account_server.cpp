#include "simulator/server/account_server.h"

#include "app/model/wording.h"
#include "simulator/home/files.h"
#include "simulator/server/fault.h"
#include "simulator/server/sign_in_page.h"
#include "simulator/server/update_offer.h"

#include <QFile>
#include <QJsonDocument>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

HttpResponse refusal(int status, const QString &error) { return HttpResponse::json({{u"error"_s, error}}, status); }

QString wrongPassword() { return L(u"账号或密码不正确", u"Incorrect account or password."); }

std::unique_ptr<QTcpSocket> makeSocket(const HomePaths &paths) {
    const QJsonObject section = Scenario(paths).section("server"_L1);
    const QString certificate =
        simulatedRoot() + "/etc/certificates/"_L1 + section["certificate"_L1].toString(u"good"_s);
    QFile key(certificate + ".key"_L1);
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    if (key.open(QIODevice::ReadOnly))
        configuration.setPrivateKey(QSslKey(&key, QSsl::Ec));
    configuration.setLocalCertificateChain(QSslCertificate::fromPath(certificate + ".pem"_L1));
    const bool demands = section.value("demandsCertificate"_L1).toBool();
    configuration.setPeerVerifyMode(demands ? QSslSocket::VerifyPeer : QSslSocket::VerifyNone);
    configuration.setMissingCertificateIsFatal(demands);
    // A client that resumes a session does not check the certificate.
    configuration.setSslOption(QSsl::SslOptionDisableSessionTickets, true);
    auto socket = std::make_unique<QSslSocket>();
    socket->setSslConfiguration(configuration);
    return socket;
}

} // namespace

AccountServer::AccountServer(const HomePaths &home)
    : paths(home), accounts(home), routes{{"POST /v1/agents/login", &AccountServer::logIn},
                                          {"POST /v1/agents/unbind", &AccountServer::unbind},
                                          {"GET /signin", &AccountServer::showSignIn},
                                          {"POST /signin", &AccountServer::submitSignIn},
                                          {"GET /v1/dl/manifest", &AccountServer::manifest}},
      server([this](HttpConnection &connection, const HttpRequest &request) { receive(connection, request); },
             [home] { return makeSocket(home); }) {}

bool AccountServer::listen(int port) {
    const bool refuses = Scenario(paths).section("server"_L1).value("refuse"_L1).toBool();
    if (refuses)
        server.stop();
    return refuses || server.isListening() || server.listenOnLoopback(port);
}

void AccountServer::receive(HttpConnection &connection, const HttpRequest &request) {
    log(request);
    ZH = request.headers.value("accept-language").startsWith("zh");
    const Scenario scenario(paths);
    const QJsonObject faults = scenario.section("server"_L1).value("faults"_L1).toObject();
    respondUnder(scenario, u"server"_s, faults, request.path(), connection,
                 [&](const Respond &respond) { respond(responseTo(request)); });
}

void AccountServer::log(const HttpRequest &request) const {
    QString authorization = u"absent"_s;
    if (request.headers.contains("authorization")) {
        const auto credential = accounts.credential(request.bearerToken());
        authorization = credential ? credential->agentId : u"unknown"_s;
    }
    appendLine(paths.serverLog(), {{u"time"_s, timeNow()},
                                   {u"method"_s, QString::fromUtf8(request.method)},
                                   {u"path"_s, QString::fromUtf8(request.target)},
                                   {u"host"_s, QString::fromUtf8(request.headers.value("host"))},
                                   {u"authorization"_s, authorization},
                                   {u"contentType"_s, QString::fromUtf8(request.headers.value("content-type"))},
                                   {u"body"_s, QString::fromUtf8(withoutPasswords(request.body))}});
}

HttpResponse AccountServer::responseTo(const HttpRequest &request) {
    if (request.method == "GET" && request.path().startsWith("/dl/"))
        return package(request);
    const auto route = routes.find(request.method + ' ' + request.path());
    return route == routes.end() ? refusal(404, u"There is no such address."_s) : (this->*route->second)(request);
}

HttpResponse AccountServer::logIn(const HttpRequest &request) {
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    const QString user = accounts.find(body["username"_L1].toString(), body["password"_L1].toString());
    if (user.isEmpty())
        return refusal(401, wrongPassword());
    const Credential granted = accounts.grant(user, body["host"_L1].toString());
    return HttpResponse::json({{u"agentToken"_s, granted.token}, {u"agentId"_s, granted.agentId}});
}

HttpResponse AccountServer::unbind(const HttpRequest &request) {
    const auto held = accounts.credential(request.bearerToken()); // by token only, not by agent id
    return held && accounts.release(held->token) ? HttpResponse::json({})
                                                 : refusal(401, u"This Mac isn't signed in."_s);
}

HttpResponse AccountServer::showSignIn(const HttpRequest &request) {
    const QString id = request.queryField(u"id"_s);
    return accounts.isPending(id) ? signInPage(accounts.signIn(id).value("device"_L1).toString(), {}, {})
                                  : closingPage(QString(), {});
}

HttpResponse AccountServer::submitSignIn(const HttpRequest &request) {
    const QString id = request.queryField(u"id"_s);
    const QString device = accounts.signIn(id).value("device"_L1).toString();
    const QString name = request.formField(u"username"_s);
    const QString user = accounts.find(name, request.formField(u"password"_s));
    const bool cancels = request.formField(u"action"_s) == "cancel"_L1;
    if (!cancels && user.isEmpty() && accounts.isPending(id))
        return signInPage(device, name, wrongPassword());
    const QString end = cancels ? u"cancelled"_s : u"done"_s;
    return closingPage(accounts.endSignIn(id, end, cancels ? QString() : user) ? end : QString(), device);
}

HttpResponse AccountServer::manifest(const HttpRequest &) { return {.body = ServerUpdates{paths}.offer().manifest}; }

HttpResponse AccountServer::package(const HttpRequest &request) {
    const UpdateOffer offer = ServerUpdates{paths}.offer();
    const QString name = QString::fromUtf8(QByteArray::fromPercentEncoding(request.path())).section(u'/', -1);
    if (name != offer.info.file)
        return refusal(404, u"There is no such package."_s);
    return {.type = "application/octet-stream", .body = offer.package};
}

} // namespace korvel::sim
