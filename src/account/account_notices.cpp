#include "account/account_notices.h"

#include "app/model/wording.h"
#include "base/plain_text.h"

namespace korvel {

Notice signedInNotice(const QString &user) {
    return {.text = L(u"● 已登录 ", u"● Signed in as ") + shownName(user), .secs = Seconds(3)};
}

Notice signingInNotice() { return {.text = L(u"正在登录…", u"Signing in…"), .secs = Seconds(40)}; }

Notice signInFailedNotice(const std::optional<QString> &reason) {
    return {.text = reason.value_or(L(u"登录失败", u"Couldn't sign in.")), .secs = Seconds(5), .error = true};
}

Notice agentAwaitedNotice() { return {.text = L(u"正在启动…", u"Starting…"), .secs = Seconds(15)}; }

Notice agentNotUpNotice() {
    return {.text = L(u"Korvel 后台服务未能启动，请稍后重试", u"Korvel couldn't start. Try again later."),
            .secs = Seconds(4),
            .error = true};
}

Notice noSignInPageNotice() {
    return {.text = L(u"无法开始登录，请稍后重试", u"Couldn't start signing in. Try again later."),
            .secs = Seconds(4),
            .error = true};
}

Notice signingOutNotice() { return {.text = L(u"⏻ 正在退出…", u"⏻ Signing out…"), .secs = Seconds(30)}; }

Notice signedOutNotice() { return {.text = L(u"⏻ 已退出账号", u"⏻ Signed out"), .secs = Seconds(2.5)}; }

Notice signOutFailedNotice() {
    return {.text = L(u"无法退出账号，请稍后重试", u"Couldn't sign out. Try again later."),
            .secs = Seconds(4),
            .error = true};
}

} // namespace korvel
