#include "permissions/permissions.h"

#include "base/log.h"
#include "permissions/permission_rules.h"
#include "permissions/permission_views.h"

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

const AgentRequest STATUS{.path = u"/perms"_s, .timeout = 20s, .keep = boundedPerms, .repeats = true};
const AgentRequest PROMPTS{
    .method = "POST", .path = u"/perms/request"_s, .timeout = 150s, .keep = boundedPerms}; // waits for the user

} // namespace

Permissions::Permissions(PermissionState &p, const HealthState &st, AgentApi &a, Desktop &d, const Scheduler &s,
                         Notices &no, Renderer &re)
    : permissions(p), health(st), api(a), desktop(d), scheduler(s), notices(no), renderer(re) {}

void Permissions::fetchPerms(std::function<void()> then) {
    const auto finish = [then = std::move(then)] {
        if (then)
            then();
    };
    if (permissions.permsFetching)
        return finish();
    permissions.permsFetching = true;
    auto received = [this, finish](const Result<QJsonObject> &reply) {
        permissions.permsFetching = false;
        permissions.permsFetchFailed = !reply;
        if (reply)
            applyPerms(reply.value());
        else
            permissions.permsFetchedAt = scheduler.now();
        finish();
    };
    api.send(STATUS, alive.guard(std::move(received)));
}

void Permissions::applyPerms(const QJsonObject &reply) {
    applyPermReply(permissions, reply);
    permissions.permsFetchedAt = scheduler.now();
    renderer.stateChanged();
}

void Permissions::askPerms() {
    if (!health.running || permissions.permsRequesting)
        return;
    permissions.permsRequesting = true;
    renderer.stateChanged();
    notices.showHUD(promptsComingNotice());
    api.send(PROMPTS, alive.guard([this](const Result<QJsonObject> &reply) {
        permissions.permsRequesting = false;
        requested(reply);
        renderer.stateChanged();
    }));
}

void Permissions::requested(const Result<QJsonObject> &reply) {
    if (!reply) {
        if (reply.error().kind != ErrorKind::UnreadableResponse)
            log(u"[perms] 申请没成: "_s + reply.error().detail);
        return notices.showHUD(permissionsNotRequestedNotice());
    }
    applyPerms(reply.value());
    notices.showHUD(holdsPermItems(reply.value()) ? permissionVerdictNotice(permissions)
                                                  : permissionsRequestedNotice());
}

void Permissions::openPermPane(const QJsonValue &pane) const {
    if (const auto address = settingsAddress(pane)) {
        log(u"[perms] opening "_s + *address);
        desktop.openUrl(*address);
    }
}

} // namespace korvel
