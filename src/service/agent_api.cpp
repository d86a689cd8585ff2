#include "service/agent_api.h"

#include <QJsonDocument>

namespace korvel {

namespace {
constexpr qsizetype MAX_KEPT_BODY = 64 << 10;
}

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
    return http;
}

Result<QJsonObject> parseAgentReply(const HttpReply &reply, Keep keep) {
    const QJsonDocument document = QJsonDocument::fromJson(reply.body);
    if (!document.isObject())
        return Error{ErrorKind::UnreadableResponse, QStringLiteral("not a JSON object")};
    return keep ? keep(document.object()) : document.object();
}

Result<QJsonObject> AgentApi::parse(const std::shared_ptr<Received> &last, Keep keep, HttpReply reply) {
    if (last && !reply.body.isEmpty() && last->body == reply.body)
        return last->object;
    const Result<QJsonObject> object = parseAgentReply(reply, keep);
    if (last && object && reply.body.size() <= MAX_KEPT_BODY)
        *last = {std::move(reply.body), object.value()};
    return object;
}

std::shared_ptr<AgentApi::Received> AgentApi::lastResponseTo(const AgentRequest &request) {
    if (!request.repeats)
        return nullptr;
    std::shared_ptr<Received> &last = received[request.path];
    if (!last)
        last = std::make_shared<Received>();
    return last;
}

void AgentApi::send(const AgentRequest &request, Done<QJsonObject> done) {
    auto received = [done = std::move(done), last = lastResponseTo(request),
                     keep = request.keep](Result<HttpReply> reply) mutable {
        done(reply ? parse(last, keep, std::move(reply.value())) : Result<QJsonObject>(reply.error()));
    };
    http.send(buildAgentRequest(fixed.AGENT_LOCAL, token(), request), Done<HttpReply>(std::move(received)));
}

bool agentOk(const Result<QJsonObject> &reply) { return reply && reply->value(u"ok").toBool(); }

} // namespace korvel
