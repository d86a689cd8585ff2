#include "service/agent_api.h"

#include <QJsonDocument>
#include <algorithm>

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

Result<QJsonObject> AgentApi::parse(const std::shared_ptr<Repeated> &last, Keep keep, HttpReply reply) {
    if (last && !reply.body.isEmpty() && last->body == reply.body)
        return last->object;
    const Result<QJsonObject> object = parseAgentReply(reply, keep);
    if (last && object && reply.body.size() <= MAX_KEPT_BODY) {
        last->body = std::move(reply.body);
        last->object = object.value();
    }
    return object;
}

std::shared_ptr<AgentApi::Repeated> AgentApi::repeated(const AgentRequest &request, const QString &localToken) {
    auto known =
        std::find_if(repeating.begin(), repeating.end(), [&](const auto &r) { return r->path == request.path; });
    if (known == repeating.end())
        known = repeating.insert(known, std::make_shared<Repeated>(Repeated{.path = request.path}));
    Repeated &last = **known;
    if (last.http.url.isEmpty() || last.localToken != localToken) {
        last.localToken = localToken;
        last.http = buildAgentRequest(fixed.AGENT_LOCAL, localToken, request);
    }
    return *known;
}

void AgentApi::send(const AgentRequest &request, Done<QJsonObject> done) {
    const QString localToken = config.readCfg().localToken;
    const auto last = request.repeats ? repeated(request, localToken) : nullptr;
    auto received = [done = std::move(done), last, keep = request.keep](Result<HttpReply> reply) mutable {
        done(reply ? parse(last, keep, std::move(reply.value())) : Result<QJsonObject>(reply.error()));
    };
    http.send(last ? last->http : buildAgentRequest(fixed.AGENT_LOCAL, localToken, request),
              Done<HttpReply>(std::move(received)));
}

bool agentOk(const Result<QJsonObject> &reply) { return reply && reply->value(u"ok").toBool(); }

} // namespace korvel
