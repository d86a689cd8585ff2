#include "permissions/permission_notices.h"

#include "app/model/wording.h"

namespace korvel {

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

} // namespace korvel
