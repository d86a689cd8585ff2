#include "permissions/permission_rules.h"

#include "app/model/wording.h"
#include "base/json.h"
#include "base/plain_text.h"

#include <QUrl>

namespace korvel {

bool permissionsMissing(const PermissionState &permissions) {
    return permissions.permsOk == false && !permissions.permsMissing.isEmpty();
}

QJsonObject boundedPerms(const QJsonObject &reply) {
    QJsonObject kept = boundedObject(reply, {u"ok"});
    if (const auto missing = boundedTexts(reply.value(u"missing")))
        kept.insert(u"missing", *missing);
    if (const auto items =
            boundedObjects(reply.value(u"items"), {u"name", u"state", u"unknown", u"pane", u"why", u"breaks"}))
        kept.insert(u"items", *items);
    return kept;
}

void applyPermSummary(PermissionState &permissions, const QJsonObject &perms) {
    permissions.permsOk = jsonBool(perms.value(u"ok"));
    permissions.permsMissing = jsonTexts(perms.value(u"missing")).value_or(QStringList());
    for (QString &name : permissions.permsMissing)
        name = singleLine(name);
}

bool holdsPermItems(const QJsonObject &reply) { return jsonObjects(reply.value(u"items")).has_value(); }

void applyPermReply(PermissionState &permissions, const QJsonObject &reply) {
    const auto items = jsonObjects(reply.value(u"items"));
    if (!items)
        return;
    permissions.permItems = *items;
    applyPermSummary(permissions, reply);
}

bool permUnknown(const QJsonObject &item) {
    const QJsonValue unknown = item.value(u"unknown");
    if (unknown.isBool())
        return unknown.toBool();
    const QString state = item.value(u"state").toString();
    return state == u"notrunning" || state.startsWith(u"unknown");
}

bool permLacks(const QJsonObject &item) {
    const QString state = item.value(u"state").toString();
    return !permUnknown(item) && (state == u"denied" || state == u"undetermined");
}

std::optional<QString> settingsAddress(const QJsonValue &pane) {
    const QString address = pane.toString();
    const QUrl url(address, QUrl::StrictMode);
    // Any other scheme may open a file, mount a share or start a program.
    const bool opens = url.isValid() && (url.scheme() == u"x-apple.systempreferences" ||
                                         (url.scheme() == u"https" && !url.host().isEmpty()));
    return opens ? std::optional(address) : std::nullopt;
}

QString permStateText(const QString &state) {
    if (state == u"denied")
        return L(u"未授权", u"Not allowed");
    if (state == u"undetermined")
        return L(u"尚未请求", u"Not requested");
    if (state == u"notrunning")
        return L(u"未运行，暂时无法查看", u"Not running, can't check");
    return L(u"无法查看", u"Unknown");
}

QString permHeadTitle(qsizetype count) {
    const QString number = QString::number(count);
    if (ZH)
        return QStringLiteral("权限 · 缺少 ") + number + QStringLiteral(" 项");
    return QStringLiteral("Permissions · ") + number + QStringLiteral(" missing");
}

} // namespace korvel
