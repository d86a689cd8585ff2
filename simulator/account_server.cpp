#include "simulator/account_server.h"

#include "simulator/fault.h"
#include "simulator/files.h"
#include "simulator/request_text.h"
#include "simulator/server_updates.h"
#include "simulator/sign_in_page.h"
#include "simulator/wording.h"

#include <QJsonDocument>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>

#include <iterator>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

struct KindName {
    QLatin1StringView name;
    CertificateKind kind;
};

constexpr KindName KIND_NAMES[] = {
    {"expired"_L1, CertificateKind::Expired},
    {"not-yet-valid"_L1, CertificateKind::NotYetValid},
    {"unknown-authority"_L1, CertificateKind::UnknownAuthority},
    {"wrong-host"_L1, CertificateKind::WrongHost},
};

CertificateKind kindNamed(const QString &name) {
    for (const KindName &each : KIND_NAMES)
        if (each.name == name)
            return each.kind;
    return CertificateKind::Good;
}

bool wantsChinese(const HttpRequest &request) {
    return isChinese(QString::fromLatin1(request.header("accept-language")));
}

HttpAnswer refusal(int status, const QString &error) { return HttpAnswer::json({{u"error"_s, error}}, status); }

} // namespace

AccountServer::AccountServer(HomePaths paths)
    : paths(paths), authority(paths), store(paths), routes{{{"POST", "/v1/agents/login"}, &AccountServer::logIn},
                                                           {{"POST", "/v1/agents/unbind"}, &AccountServer::unbind},
                                                           {{"GET", "/signin"}, &AccountServer::showSignIn},
                                                           {{"POST", "/signin"}, &AccountServer::submitSignIn},
                                                           {{"GET", "/v1/dl/manifest"}, &AccountServer::manifest}},
      server([this](HttpConnection &connection, const HttpRequest &request) { receive(connection, request); },
             [this](qintptr descriptor) { return secureSocket(descriptor); }) {}

bool AccountServer::listen(int port) {
    const bool refuses = Scenario::read(paths).section("server"_L1).value("refuse"_L1).toBool();
    if (refuses)
        server.stop();
    return refuses || server.isListening() || server.listenOnLoopback(port);
}

std::unique_ptr<QTcpSocket> AccountServer::secureSocket(qintptr descriptor) const {
    const QJsonObject section = Scenario::read(paths).section("server"_L1);
    const TlsIdentity identity = authority.issue(kindNamed(section.value("certificate"_L1).toString()));
    auto socket = std::make_unique<QSslSocket>();
    if (!identity.isValid() || !socket->setSocketDescriptor(descriptor))
        return nullptr;
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(identity.certificate));
    configuration.setPrivateKey(QSslKey(identity.key, QSsl::Ec));
    const bool demands = section.value("demandsCertificate"_L1).toBool();
    configuration.setPeerVerifyMode(demands ? QSslSocket::VerifyPeer : QSslSocket::VerifyNone);
    configuration.setMissingCertificateIsFatal(demands);
    // A client that went on with an earlier session would not look at the certificate.
    configuration.setSslOption(QSsl::SslOptionDisableSessionTickets, true);
    socket->setSslConfiguration(configuration);
    socket->startServerEncryption();
    return socket;
}

void AccountServer::receive(HttpConnection &connection, const HttpRequest &request) {
    log(request);
    const Scenario scenario = Scenario::read(paths);
    const QJsonObject faults = scenario.section("server"_L1).value("faults"_L1).toObject();
    const Fault fault = faultFor(scenario, u"server"_s, faults, request.path());
    answerUnder(fault, connection, [&](const Respond &respond) { respond(answer(request)); });
}

void AccountServer::log(const HttpRequest &request) const {
    QString authorization = u"absent"_s;
    if (!request.header("authorization").isNull()) {
        const auto credential = credentialOf(store.read(), bearerToken(request));
        authorization = credential ? credential->agentId : u"unknown"_s;
    }
    appendLine(paths.serverLog(), {
                                      {u"time"_s, timeNow()},
                                      {u"method"_s, QString::fromUtf8(request.method)},
                                      {u"path"_s, QString::fromUtf8(request.target)},
                                      {u"host"_s, QString::fromUtf8(request.header("host"))},
                                      {u"authorization"_s, authorization},
                                      {u"contentType"_s, QString::fromUtf8(request.header("content-type"))},
                                      {u"body"_s, bodyToLog(request)},
                                  });
}

HttpAnswer AccountServer::answer(const HttpRequest &request) const {
    if (request.method == "GET" && request.path().startsWith("/dl/"))
        return package(request);
    const auto route = routes.find({request.method, request.path()});
    return route == routes.end() ? refusal(404, u"There is no such address."_s) : (this->*route->second)(request);
}

HttpAnswer AccountServer::logIn(const HttpRequest &request) const {
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    Credential granted;
    const bool known = store.change([&](AccountBook &book, qint64) {
        const UserAccount *user =
            findUser(book, body.value("username"_L1).toString(), body.value("password"_L1).toString());
        if (user)
            granted = grant(book, user->name, body.value("host"_L1).toString());
        return user != nullptr;
    });
    if (!known)
        return refusal(401, WRONG_PASSWORD.in(wantsChinese(request)));
    return HttpAnswer::json({{u"agentToken"_s, granted.token}, {u"agentId"_s, granted.agentId}});
}

HttpAnswer AccountServer::unbind(const HttpRequest &request) const {
    const QString token = bearerToken(request);
    const bool released = store.change([&](AccountBook &book, qint64) {
        return credentialOf(book, token) && release(book, token); // by its token alone, not by the agent's id
    });
    return released ? HttpAnswer::json({}) : refusal(401, u"This Mac isn't signed in."_s);
}

HttpAnswer AccountServer::showSignIn(const HttpRequest &request) const {
    SignInPage page{.chinese = wantsChinese(request)};
    const bool pending = store.change([&](AccountBook &book, qint64 now) {
        const BrowserSignIn *signIn = findBrowserSignIn(book, request.queryField(u"id"_s), now);
        if (!signIn || signIn->status != BrowserSignIn::Status::Pending)
            return false;
        page.device = signIn->device;
        return true;
    });
    return pending ? htmlOf(page) : closingPage(SignInEnd::Invalid, page.chinese, {});
}

HttpAnswer AccountServer::submitSignIn(const HttpRequest &request) const {
    SignInPage page{.chinese = wantsChinese(request), .userName = formField(request.body, u"username"_s)};
    const bool cancels = formField(request.body, u"action"_s) == "cancel"_L1;
    std::optional<SignInEnd> end = SignInEnd::Invalid;
    store.change([&](AccountBook &book, qint64 now) {
        BrowserSignIn *signIn = findBrowserSignIn(book, request.queryField(u"id"_s), now);
        if (!signIn || signIn->status != BrowserSignIn::Status::Pending)
            return false;
        page.device = signIn->device;
        const UserAccount *user = findUser(book, page.userName, formField(request.body, u"password"_s));
        if (cancels || user) {
            signIn->status = cancels ? BrowserSignIn::Status::Cancelled : BrowserSignIn::Status::Done;
            signIn->account = cancels ? QString() : user->name;
        }
        end = cancels ? std::optional(SignInEnd::Cancelled) : user ? std::optional(SignInEnd::SignedIn) : std::nullopt;
        return true;
    });
    if (end)
        return closingPage(*end, page.chinese, page.device);
    page.error = WRONG_PASSWORD.in(page.chinese);
    return htmlOf(page);
}

HttpAnswer AccountServer::manifest(const HttpRequest &) const {
    return {200, "application/json", ServerUpdates(paths).offer().manifest};
}

HttpAnswer AccountServer::package(const HttpRequest &request) const {
    const UpdateOffer offer = ServerUpdates(paths).offer();
    const QString name = QString::fromUtf8(QByteArray::fromPercentEncoding(request.path())).section(u'/', -1);
    if (name != offer.info.file)
        return refusal(404, u"There is no such package."_s);
    return {200, "application/octet-stream", offer.package};
}

} // namespace korvel::sim
