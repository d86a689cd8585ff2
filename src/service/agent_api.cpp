#include "service/agent_api.h"

#include <QJsonDocument>

namespace korvel {

HttpRequest buildAgentRequest(const QString &agentLocal, const QString &localToken, const AgentRequest &request) {
    HttpRequest http;
    http.method = request.method;
    http.url = agentLocal + request.path;
    if (!localToken.isEmpty())
        http.headers.emplace_back("X-Korvel-Token", localToken.toUtf8());
    if (request.body) {
        http.headers.emplace_back("Content-Type", "application/json");
        http.body = QJsonDocument(*request.body).toJson(QJsonDocument::Compact);
    }
    http.timeout = request.timeout;
    http.reach = Reach::Loopback;
    return http;
}

Result<QJsonObject> parseAgentReply(const HttpReply &reply) {
    const QJsonDocument document = QJsonDocument::fromJson(reply.body);
    if (!document.isObject())
        return Error{ErrorKind::UnreadableAnswer, QStringLiteral("not a JSON object")};
    return document.object();
}

void AgentApi::send(const AgentRequest &request, Done<QJsonObject> done) {
    http.send(buildAgentRequest(fixed.AGENT_LOCAL, token(), request),
              Done<HttpReply>([done = std::move(done)](Result<HttpReply> reply) mutable {
                  done(reply ? parseAgentReply(reply.value()) : Result<QJsonObject>(reply.error()));
              }));
}

} // namespace korvel
