#include "account/server_api.h"

#include "app/model/wording.h"
#include "base/json.h"
#include "base/log.h"
#include "base/plain_text.h"

#include <QJsonDocument>
#include <QUrl>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace korvel {

namespace {

constexpr qsizetype MAX_NAME = 32;

std::optional<ServerRequest> post(const QString &server, const QString &path, std::chrono::milliseconds timeout) {
    auto request = buildServerRequest(server, path, timeout);
    if (request)
        request->method = "POST";
    return request;
}

} // namespace

std::optional<ServerRequest> buildServerRequest(const QString &server, const QString &path,
                                                std::chrono::milliseconds timeout) {
    const QUrl url(u"https://"_s + server + path, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        return std::nullopt;
    ServerRequest request;
    request.url = url.toString(QUrl::FullyEncoded);
    if (!ACCEPT_LANGUAGE.isEmpty())
        request.headers.emplace_back("Accept-Language", ACCEPT_LANGUAGE);
    request.timeout = timeout;
    return request;
}

std::optional<ServerRequest> buildLogin(const QString &server, const QString &user, const QString &pass,
                                        const QString &host) {
    auto request = post(server, u"/v1/agents/login"_s, 25s);
    if (!request)
        return std::nullopt;
    request->headers.emplace_back("Content-Type", "application/json");
    const QJsonObject body{{u"username"_s, user}, {u"password"_s, pass}, {u"host"_s, host}};
    request->body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return request;
}

Result<Credential> parseLogin(const Result<HttpReply> &reply) {
    const QJsonDocument document = reply ? QJsonDocument::fromJson(reply.value().body) : QJsonDocument();
    if (!document.isObject())
        return reply ? Error{ErrorKind::UnreadableResponse, L(u"服务器未正常响应，请稍后重试",
                                                              u"The server didn't respond correctly. Try again later.")}
                     : Error{reply.error().kind, netErrorText(reply.error())};
    const QJsonObject response = document.object();
    const auto token = jsonText(response.value(u"agentToken"));
    const auto agentId = jsonText(response.value(u"agentId"));
    if (token && agentId && !token->isEmpty())
        return Credential{*token, *agentId};
    return Error{
        ErrorKind::Refused,
        jsonText(response.value(u"error")).value_or(L(u"登录失败，请稍后重试", u"Couldn't sign in. Try again later."))};
}

std::optional<ServerRequest> buildUnbind(const QString &server, const QString &token) {
    auto request = post(server, u"/v1/agents/unbind"_s, 15s);
    if (request)
        request->headers.emplace_back("Authorization", "Bearer " + token.toUtf8());
    return request;
}

QString computerDisplayName(QString systemName) {
    systemName.remove(u".local"_s);
    // Counts grapheme clusters, so that an emoji is not cut in two.
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, systemName);
    for (qsizetype i = 0; i < MAX_NAME; ++i)
        if (nextCluster(characters) < 0)
            return systemName;
    return systemName.left(characters.position());
}

QString netErrorText(const std::optional<Error> &error) {
    if (!error)
        return L(u"无法连接服务器，请检查网络后重试",
                 u"Can't connect to the server. Check your network and try again.");
    if (!error->detail.isEmpty())
        log(QStringLiteral("[net] ") + error->detail);
    switch (error->kind) {
    case ErrorKind::Offline:
    case ErrorKind::Interrupted:
        return L(u"这台 Mac 未连接网络，请连接后重试", u"This Mac is offline. Connect to the internet and try again.");
    case ErrorKind::TimedOut:
        return L(u"服务器响应超时，请稍后重试", u"The server timed out. Try again later.");
    case ErrorKind::HostNotFound:
        return L(u"无法找到服务器，请检查网络后重试", u"Can't find the server. Check your network and try again.");
    case ErrorKind::InsecureConnection:
        return L(u"无法建立安全连接，请更换网络后重试", u"Can't establish a secure connection. Try another network.");
    case ErrorKind::Dropped:
    case ErrorKind::InvalidRequest:
    case ErrorKind::Unreachable:
    case ErrorKind::TooLarge:
    case ErrorKind::NotSaved:
    case ErrorKind::UnreadableResponse:
    case ErrorKind::Refused:
        break;
    }
    return L(u"无法连接服务器，请稍后重试", u"Can't connect to the server. Try again later.");
}

} // namespace korvel
