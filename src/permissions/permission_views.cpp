#include "permissions/permission_views.h"

#include "app/model/wording.h"
#include "base/plain_text.h"
#include "permissions/permission_rules.h"

#include <algorithm>

namespace korvel {

namespace {

/// One line with mark, name, state and use. The effect of a missing permission is the detail and the tool tip.
MenuEntry permissionItem(const QJsonObject &item) {
    const QString separator = QStringLiteral(" · ");
    const auto textOf = [&item](QStringView key) { return singleLine(item.value(key).toString()); };
    const auto labelled = [&textOf](QStringView key, const QString &label) {
        const QString text = textOf(key);
        return text.isEmpty() ? QString() : label + text;
    };
    const QString use = labelled(u"why", separator + L(u"用于：", u"Used for: "));
    const QString breaks = labelled(u"breaks", L(u"缺少时：", u"Without it: "));
    const QString mark = permLacks(item) ? QStringLiteral("⚠ ") : QStringLiteral("? ");
    MenuEntry entry =
        menuItem(mark + textOf(u"name") + separator + permStateText(item.value(u"state").toString()) + use,
                 Action::OpenPermPane, breaks);
    if (!breaks.isEmpty())
        entry.detail = separator + entry.toolTip;
    entry.payload = item.value(u"pane");
    return entry;
}

} // namespace

Notice promptsComingNotice() {
    return {.text =
                L(u"系统将多次弹出授权对话框，请都点击「允许」。辅助功能需在系统设置中打开 korvel-agent",
                  u"macOS will ask several times. Click Allow each time. For Accessibility, turn on korvel-agent in "
                  u"System Settings."),
            .secs = Seconds(6)};
}

Notice permissionVerdictNotice(const PermissionState &permissions) {
    if (permissions.permsOk == true)
        return {.text = L(u"✓ 已获得全部权限", u"✓ All permissions granted"), .secs = Seconds(3)};
    return {.text = L(u"仍缺少：", u"Still missing: ") + permissions.permsMissing.join(L(u"、", u", ")) +
                    L(u"。请在「系统设置 › 隐私与安全性」中打开 korvel-agent",
                      u". Turn on korvel-agent in System Settings › Privacy & Security."),
            .secs = Seconds(10),
            .error = true};
}

Notice permissionsRequestedNotice() {
    return {.text = L(u"已发出权限申请", u"Permission request sent."), .secs = Seconds(4)};
}

Notice permissionsNotRequestedNotice() {
    return {.text = L(u"无法申请权限：Korvel 未响应，请稍后重试",
                      u"Couldn't request permissions. Korvel isn't responding. Try again later."),
            .secs = Seconds(6),
            .error = true};
}

QList<MenuEntry> permMenuItems(const Situation &s) {
    const PermissionState &permissions = s.state.permissions;
    if (!s.state.health.running || (permissions.permItems.isEmpty() && !permissionsMissing(permissions)))
        return {};
    const qsizetype count = std::max(permissions.permItems.size(), permissions.permsMissing.size());
    QList<MenuEntry> list{menuLine(permHeadTitle(count))};
    for (const QJsonObject &item : permissions.permItems)
        list.append(permissionItem(item));
    list.append(menuItem(
        permissions.permsRequesting ? L(u"正在申请…", u"Requesting…") : L(u"申请权限…", u"Request Permissions…"),
        Action::AskPerms,
        L(u"系统将多次弹出授权对话框，请都点击「允许」", u"macOS will ask several times. Click Allow each time.")));
    return list;
}

} // namespace korvel
