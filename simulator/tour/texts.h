#pragma once

#include "app/model/wording.h"

/// Texts of several steps, written out so that the tour does not depend on the tray's.
namespace korvel::sim {

// Account of the tour's sign-ins, which every simulated account server has.
inline const QString SERVER_ACCOUNT = QStringLiteral("sam@example.com");
inline const QString SERVER_PHONE = QStringLiteral("13800000000");
inline const QString SERVER_PASSWORD = QStringLiteral("open sesame");

inline QString signInEntry() { return L(u"登录 / 注册…", u"Sign In / Sign Up…"); }
inline QString signedInNotice() { return L(u"● 已登录 ", u"● Signed in as ") + SERVER_ACCOUNT; }
inline QString connectedLine() { return L(u"● 已连接 · ann · 1 个会话", u"● Connected · ann · 1 session"); }
inline QString serverConnectedLine() {
    return L(u"● 已连接 · %1 · 1 个会话", u"● Connected · %1 · 1 session").arg(SERVER_ACCOUNT);
}
inline QString pairTitle() { return L(u"配对这台 Mac", u"Pair This Mac"); }

} // namespace korvel::sim
