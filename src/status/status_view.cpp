#include "status/status_view.h"

#include "app/model/wording.h"
#include "base/plain_text.h"
#include "e2ee/report.h"
#include "permissions/permission_rules.h"

namespace korvel {

namespace {

QString accountPart(const HealthState &health) {
    const QString account = shownName(health.account);
    return account.isEmpty() ? QString() : QStringLiteral(" · ") + account;
}

QString permissionPart(const PermissionState &permissions) {
    if (!permissionsMissing(permissions))
        return {};
    const qsizetype missing = permissions.permsMissing.size();
    const QString number = QString::number(missing);
    if (ZH)
        return QStringLiteral(" · ⚠ 缺少 ") + number + QStringLiteral(" 项权限");
    return QStringLiteral(" · ⚠ ") + number +
           (missing == 1 ? QStringLiteral(" permission missing") : QStringLiteral(" permissions missing"));
}

QString sessionsPart(qint64 sessions) {
    const QString number = QStringLiteral(" · ") + QString::number(sessions);
    return number + (sessions == 1 ? L(u" 个会话", u" session") : L(u" 个会话", u" sessions"));
}

QString notInstalledText(bool repairFailed) {
    return repairFailed
               ? L(u"后台服务未正确安装，请重新安装 Korvel", u"Korvel isn't installed correctly. Reinstall Korvel.")
               : L(u"后台服务未正确安装，请点击「修复 Korvel」",
                   u"Korvel isn't installed correctly. Choose Repair Korvel.");
}

QString deadSignInText(bool accountGone) {
    return accountGone ? L(u"账号已注销，请使用其他账号登录", u"Account deleted. Sign in with a different account.")
                       : L(u"登录已失效，请重新登录", u"Signed out. Sign in again.");
}

QString pairingText(const QString &state, QString sentence) {
    if (sentence.endsWith(u'.'))
        sentence.chop(1);
    const bool serious = isOneOf(state, {u"approved", u"rejected", u"revoked", u"suspended"});
    return (serious ? QStringLiteral("⚠ ") : QStringLiteral("○ ")) + sentence;
}

QString runningText(const Situation &s) {
    const HealthState &health = s.state.health;
    const QJsonObject &e2 = s.state.e2ee.e2;
    const QString account = accountPart(health);
    const QString permissions = permissionPart(s.state.permissions);
    if (health.online)
        return L(u"● 已连接", u"● Connected") + account + sessionsPart(health.sessions) + permissions;
    if (const auto sentence = e2StatusText(e2); sentence && e2NeedsPairing(e2, s.bound, health.authDead))
        return pairingText(e2State(e2), *sentence) + account;
    return (s.timing.longConnecting ? L(u"○ 无法连接服务器，正在重试…", u"○ Can't connect to the server. Retrying…")
                                    : L(u"○ 正在连接…", u"○ Connecting…")) +
           account + permissions;
}

QString silentText(const Situation &s) {
    const HealthState &health = s.state.health;
    if (health.jobLoaded.value_or(true) && s.timing.starting)
        return L(u"○ 正在启动…", u"○ Starting…") + accountPart(health);
    if (health.jobLoaded == true)
        return L(u"○ Korvel 未响应，正在重试…", u"○ Korvel isn't responding. Retrying…");
    return L(u"⏻ 已暂停同步", u"⏻ Sync paused") + accountPart(health);
}

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

QString statusLine(const Situation &s) {
    const HealthState &health = s.state.health;
    const ServiceState &service = s.state.service;
    if (!s.bound)
        return L(u"未登录", u"Not signed in");
    if (service.repairing)
        return L(u"正在修复…", u"Repairing…");
    if (!s.plistExists)
        return notInstalledText(service.repairFailed);
    if (service.busy)
        return L(u"正在切换…", u"Switching…");
    if (e2State(s.state.e2ee.e2) == u"pair-failed")
        return QStringLiteral("⚠ ") + L(u"配对失败次数过多，请重新登录", u"Too many incorrect codes. Sign in again.");
    if (health.authDead)
        return deadSignInText(health.accountGone);
    return health.running ? runningText(s) : silentText(s);
}

IconView iconView(const Situation &s) {
    const HealthState &health = s.state.health;
    return {.on = health.running,
            .dimmed = !(health.running && health.online && !health.authDead),
            .toolTip = singleLine(toolTipOf(s))};
}

} // namespace korvel
