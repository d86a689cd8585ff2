#include "permissions/permissions.h"

#include "app/wording.h"
#include "permissions/permission_rules.h"
#include "platform/log.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

const AgentRequest STATUS{.path = u"/perms"_s, .timeout = 20s};
const AgentRequest PROMPTS{.method = "POST", .path = u"/perms/request"_s, .timeout = 150s}; // a person answers

Notice promptsComing() {
    return {.text =
                L(u"系统将多次弹出授权对话框，请都点击「允许」。辅助功能需在系统设置中打开 korvel-agent",
                  u"macOS will ask several times. Click Allow each time. For Accessibility, turn on korvel-agent in "
                  u"System Settings."),
            .secs = Seconds(6)};
}

Notice verdict(const PermissionState &permissions) {
    if (permissions.permsOk == true)
        return {.text = L(u"✓ 已获得全部权限", u"✓ All permissions granted"), .secs = Seconds(3)};
    return {.text = L(u"仍缺少：", u"Still missing: ") + permissions.permsMissing.join(L(u"、", u", ")) +
                    L(u"。请在「系统设置 › 隐私与安全性」中打开 korvel-agent",
                      u". Turn on korvel-agent in System Settings › Privacy & Security."),
            .secs = Seconds(10),
            .error = true};
}

} // namespace

Permissions::Permissions(PermissionState &p, const HealthState &st, AgentApi &a, Desktop &d, const Scheduler &s,
                         Hooks h)
    : permissions(p), health(st), api(a), desktop(d), scheduler(s), hooks(std::move(h)) {}

void Permissions::fetchPerms(std::function<void()> then) {
    const auto finish = [then = std::move(then)] {
        if (then)
            then();
    };
    if (permissions.permsFetching)
        return finish();
    permissions.permsFetching = true;
    auto answered = [this, finish](const Result<QJsonObject> &reply) {
        permissions.permsFetching = false;
        permissions.permsFetchFailed = !reply;
        if (reply)
            applyPerms(reply.value());
        else
            permissions.permsFetchedAt = scheduler.now();
        finish();
    };
    api.send(STATUS, Done<QJsonObject>(alive.guard(std::move(answered))));
}

void Permissions::applyPerms(const QJsonObject &reply) {
    applyPermReply(permissions, reply);
    permissions.permsFetchedAt = scheduler.now();
    hooks.render();
}

void Permissions::askPerms() {
    if (!health.running || permissions.permsRequesting)
        return;
    permissions.permsRequesting = true;
    hooks.render();
    hooks.showHUD(promptsComing());
    api.send(PROMPTS, Done<QJsonObject>(alive.guard([this](const Result<QJsonObject> &reply) {
                 permissions.permsRequesting = false;
                 asked(reply);
                 hooks.render();
             })));
}

void Permissions::asked(const Result<QJsonObject> &reply) {
    if (!reply) {
        if (reply.error().kind != ErrorKind::UnreadableAnswer)
            log(u"[perms] 申请没成: "_s + reply.error().detail);
        return hooks.showHUD({.text = L(u"无法申请权限：Korvel 未响应，请稍后重试",
                                        u"Couldn't request permissions. Korvel isn't responding. Try again later."),
                              .secs = Seconds(6),
                              .error = true});
    }
    applyPerms(reply.value());
    if (holdsPermItems(reply.value()))
        hooks.showHUD(verdict(permissions));
    else
        hooks.showHUD({.text = L(u"已发出权限申请", u"Permission request sent."), .secs = Seconds(4)});
}

void Permissions::openPermPane(const QJsonValue &pane) const {
    const QString address = pane.toString();
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty())
        return;
    log(u"[perms] opening "_s + address);
    desktop.openUrl(address);
}

} // namespace korvel
