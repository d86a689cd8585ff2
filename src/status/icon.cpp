#include "status/icon.h"

#include "app/model/wording.h"
#include "base/plain_text.h"
#include "e2ee/report.h"
#include "permissions/permission_rules.h"

namespace korvel {

namespace {

QString toolTipOf(const Situation &s) {
    const HealthState &health = s.state.health;
    const QString prefix = QStringLiteral("Korvel · ");
    if (health.authDead)
        return prefix + (health.accountGone ? L(u"账号已注销", u"Account deleted") : L(u"登录已失效", u"Signed out"));
    if (e2NeedsPairing(s.state.e2ee.e2, s.bound, health.authDead))
        return prefix + L(u"未配对", u"Not paired");
    if (permissionsMissing(s.state.permissions))
        return prefix + L(u"缺少权限：", u"Missing permissions: ") +
               s.state.permissions.permsMissing.join(L(u"、", u", "));
    return QStringLiteral("Korvel");
}

} // namespace

IconView iconView(const Situation &s) {
    const HealthState &health = s.state.health;
    return {.on = health.running,
            .dimmed = !(health.running && health.online && !health.authDead),
            .toolTip = singleLine(toolTipOf(s))};
}

} // namespace korvel
