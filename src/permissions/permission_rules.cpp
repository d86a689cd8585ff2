#include "permissions/permission_rules.h"

#include "app/wording.h"
#include "platform/json_values.h"

#include <algorithm>

namespace korvel {

namespace {
/// More than any macOS has; each is an entry of the menu.
constexpr qsizetype MOST_PERMISSIONS = 64;
} // namespace

bool permissionsMissing(const PermissionState &permissions) {
    return permissions.permsOk == false && !permissions.permsMissing.isEmpty();
}

bool holdsPermItems(const QJsonObject &reply) { return jsonObjects(reply.value(u"items")).has_value(); }

void applyPermReply(PermissionState &permissions, const QJsonObject &reply) {
    const auto items = jsonObjects(reply.value(u"items"));
    if (!items)
        return;
    permissions.permItems = items->first(std::min(items->size(), MOST_PERMISSIONS));
    permissions.permsOk = jsonBool(reply.value(u"ok"));
    permissions.permsMissing = jsonTexts(reply.value(u"missing")).value_or(QStringList());
}

PermVerdict permVerdict(const QJsonObject &item, const QStringList &missing) {
    if (permUnknown(item))
        return PermVerdict::Unknown;
    const QString state = item.value(u"state").toString();
    const bool lacks =
        missing.contains(item.value(u"name").toString()) || state == u"denied" || state == u"undetermined";
    return lacks ? PermVerdict::Missing : PermVerdict::Granted;
}

bool permUnknown(const QJsonObject &item) {
    const QJsonValue unknown = item.value(u"unknown");
    if (unknown.isBool())
        return unknown.toBool();
    const QString state = item.value(u"state").toString();
    return state == u"notrunning" || state.startsWith(u"unknown");
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
