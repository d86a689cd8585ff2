#include "account/server_api.h"

#include "account/net_error.h"
#include "app/model/wording.h"
#include "base/json_values.h"

#include <QJsonDocument>
#include <QTextBoundaryFinder>
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
        if (characters.toNextBoundary() < 0)
            return systemName;
    return systemName.left(characters.position());
}

} // namespace korvel
