#include "status/health.h"

#include "app/model/situation.h"
#include "base/json.h"
#include "e2ee/report.h"
#include "permissions/permission_rules.h"
#include "service/agent_api.h"
#include "service/job_state.h"

namespace korvel {

namespace {

constexpr auto JOB_CHECK_INTERVAL = 10s;
constexpr auto PERMISSION_FETCH_INTERVAL = 30s;

/// True if the user has not been notified of this loss of the sign-in.
bool applySignIn(HealthState &health, bool dead, bool accountGone) {
    const bool notify = dead && !health.authDeadNotified;
    health.accountGone = dead && accountGone;
    health.authDeadNotified = dead;
    health.authDead = dead;
    return notify;
}

HealthEffects applyResponse(TrayState &state, const QJsonObject &response, const HealthContext &context) {
    HealthState &health = state.health;
    HealthEffects effects;
    if (!health.running)
        outdateJobLookups(health);
    health.running = true;
    health.jobLoaded = true;
    health.online = response.value(u"online").toBool();
    if (health.online)
        health.connectingSince.reset();
    else if (!health.connectingSince)
        health.connectingSince = context.now;
    const QString ver = response.value(u"ver").toString();
    if (const qsizetype slash = ver.lastIndexOf(u'/'); slash >= 0)
        health.agentVer = ver.sliced(slash + 1);
    health.sessions = response.value(u"sessions").toInteger();
    health.account = response.value(u"account").toString(context.username);

    const bool dead = response.value(u"authDead").toBool() && context.bound;
    if (applySignIn(health, dead, response.value(u"accountGone").toBool()))
        effects.notice = health.accountGone ? HealthEffects::Notice::AccountDeleted : HealthEffects::Notice::SignedOut;

    state.e2ee.e2 = response.value(u"e2ee").toObject();
    effects.reactToReport = true;
    applyPermSummary(state.permissions, response.value(u"perms").toObject());
    const auto &fetchedAt = state.permissions.permsFetchedAt;
    effects.fetchPerms = !fetchedAt || context.now - *fetchedAt > PERMISSION_FETCH_INTERVAL;
    return effects;
}

HealthEffects applySilence(TrayState &state, const HealthContext &context) {
    HealthState &health = state.health;
    health.running = false;
    health.online = false;
    health.connectingSince.reset();
    health.account = context.username;
    PermissionState &permissions = state.permissions;
    permissions.permsOk.reset();
    permissions.permsMissing.clear();
    permissions.permItems.clear();
    permissions.permsFetchedAt.reset();
    permissions.permsFetchFailed = false;

    HealthEffects effects;
    effects.checkJob =
        !health.jobLoaded || isStarting(health, context.now) || context.now - health.jobCheckedAt > JOB_CHECK_INTERVAL;
    if (effects.checkJob)
        health.jobCheckedAt = context.now;
    return effects;
}

} // namespace

QJsonObject boundedHealth(const QJsonObject &response) {
    QJsonObject kept =
        boundedObject(response, {u"ok", u"online", u"ver", u"sessions", u"account", u"authDead", u"accountGone"});
    if (const QJsonValue e2ee = response.value(u"e2ee"); e2ee.isObject())
        kept.insert(u"e2ee", boundedReport(e2ee.toObject()));
    if (const QJsonValue perms = response.value(u"perms"); perms.isObject())
        kept.insert(u"perms", boundedPerms(perms.toObject()));
    return kept;
}

Result<QJsonObject> healthResponse(const Result<QJsonObject> &reply) {
    return !reply || agentOk(reply) ? reply : Error{ErrorKind::Refused, {}};
}

HealthEffects applyHealth(TrayState &state, const Result<QJsonObject> &response, const HealthContext &context) {
    return response ? applyResponse(state, response.value(), context) : applySilence(state, context);
}

} // namespace korvel
