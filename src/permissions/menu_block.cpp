#include "permissions/menu_block.h"

#include "app/wording.h"
#include "permissions/permission_rules.h"

#include <algorithm>

namespace korvel {

namespace {

QString markOf(PermVerdict verdict) {
    switch (verdict) {
    case PermVerdict::Granted:
        return QStringLiteral("✓ ");
    case PermVerdict::Missing:
        return QStringLiteral("⚠ ");
    case PermVerdict::Unknown:
        break;
    }
    return QStringLiteral("? ");
}

/// The state in words that agree with the verdict, also where the agent contradicts itself.
QString stateWords(PermVerdict verdict, const QString &state) {
    switch (verdict) {
    case PermVerdict::Granted:
        return L(u"已授权", u"Allowed");
    case PermVerdict::Missing:
        return permStateText(state == u"undetermined" ? state : QStringLiteral("denied"));
    case PermVerdict::Unknown:
        break;
    }
    return permStateText(state == u"notrunning" ? state : QString());
}

/// One line: mark, name, state, use, and what breaks where it is not granted; use and breakage also as a tool tip.
MenuEntry permissionItem(const QJsonObject &item, const QStringList &missing) {
    const PermVerdict verdict = permVerdict(item, missing);
    const auto labelled = [&item](QStringView key, const QString &label) {
        const QString text = item.value(key).toString();
        return text.isEmpty() ? QStringList() : QStringList(label + text);
    };
    const QStringList use = labelled(u"why", L(u"用于：", u"Used for: "));
    const QStringList breaks = labelled(u"breaks", L(u"缺少时：", u"Without it: "));
    const QStringList title{markOf(verdict) + item.value(u"name").toString(),
                            stateWords(verdict, item.value(u"state").toString())};
    const QString separator = QStringLiteral(" · ");
    MenuEntry entry =
        menuItem((title + use + (verdict == PermVerdict::Granted ? QStringList() : breaks)).join(separator),
                 Action::OpenPermPane, (use + breaks).join(separator));
    entry.payload = item.value(u"pane");
    return entry;
}

} // namespace

QList<MenuEntry> permMenuItems(const Situation &s) {
    const PermissionState &permissions = s.state.permissions;
    if (!s.state.health.running || (permissions.permItems.isEmpty() && !permissionsMissing(permissions)))
        return {};
    const qsizetype count = std::max(permissions.permItems.size(), permissions.permsMissing.size());
    QList<MenuEntry> list{menuLine(permHeadTitle(count))};
    for (const QJsonObject &item : permissions.permItems)
        list.append(permissionItem(item, permissions.permsMissing));
    list.append(menuItem(
        permissions.permsRequesting ? L(u"正在申请…", u"Requesting…") : L(u"申请权限…", u"Request Permissions…"),
        Action::AskPerms,
        L(u"系统将多次弹出授权对话框，请都点击「允许」", u"macOS will ask several times. Click Allow each time.")));
    return list;
}

} // namespace korvel
