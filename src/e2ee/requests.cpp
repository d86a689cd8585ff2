#include "e2ee/requests.h"

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace korvel {

namespace {

AgentRequest post(const QString &path, const QJsonObject &body = {}, std::chrono::milliseconds timeout = 60s) {
    return {.method = "POST", .path = path, .body = body, .timeout = timeout};
}

} // namespace

AgentRequest pairDeviceRequest(const QString &pendingId, const QString &code) {
    return post(u"/e2ee/pair"_s, {{u"pendingId"_s, pendingId}, {u"code"_s, code}}, 75s);
}
AgentRequest rejectDeviceRequest(const QString &pendingId) {
    return post(u"/e2ee/reject"_s, {{u"pendingId"_s, pendingId}});
}
AgentRequest renewCodeRequest() { return post(u"/e2ee/pair/new"_s); }
AgentRequest dismissAlarmRequest(const QString &id) { return post(u"/e2ee/alarm/dismiss"_s, {{u"id"_s, id}}); }
AgentRequest acceptResetRequest() { return post(u"/e2ee/reset/accept"_s); }
AgentRequest installSpeechRequest() { return post(u"/e2ee/asr/install"_s); }
AgentRequest e2LogoutRequest() { return post(u"/e2ee/logout"_s, {}, 30s); }

void e2Post(AgentApi &api, const AgentRequest &request, std::function<void(std::optional<QJsonObject>)> done) {
    if (!api.hasToken())
        return done(std::nullopt);
    api.send(request, Done<QJsonObject>([done = std::move(done)](Result<QJsonObject> reply) {
                 done(reply ? std::optional(reply.value()) : std::nullopt);
             }));
}

bool replyOk(const std::optional<QJsonObject> &reply) { return reply && reply->value(u"ok").toBool(); }

} // namespace korvel
