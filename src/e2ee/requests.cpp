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

void e2Post(AgentApi &api, const AgentRequest &request, Done<QJsonObject> done) {
    if (!api.hasToken())
        return done(Error{ErrorKind::InvalidRequest, {}});
    api.send(request, std::move(done));
}

} // namespace korvel
