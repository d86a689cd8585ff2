#include "permissions/menu_block.h"

#include "app/wording.h"
#include "permissions/permission_rules.h"

#include <algorithm>

namespace korvel {

namespace {

MenuEntry permissionItem(const QJsonObject &item, const QStringList &missing) {
    const QString name = item.value(u"name").toString();
    const QString state = item.value(u"state").toString();
    const bool lacking = missing.contains(name) || state == u"denied" || state == u"undetermined";
    QString title = QStringLiteral("✓ ") + name;
    if (permUnknown(item))
        title = QStringLiteral("? ") + name + QStringLiteral(" · ") + permStateText(state);
    else if (lacking)
        title = QStringLiteral("⚠ ") + name + QStringLiteral(" · ") + permStateText(state);
    MenuEntry entry = menuItem(title, Action::OpenPermPane);
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
