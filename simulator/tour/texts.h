#pragma once

#include "simulator/tour/tour.h"

// The texts that more than one step expects, written out here so that the tour does not take the tray's word for them.
namespace korvel::sim {

// Who is signed in during the tour.
inline QString tourAccount() { return QStringLiteral("ann"); }

// Who signs in during the tour: the account that every simulated account server has.
inline QString serverAccount() { return QStringLiteral("sam@example.com"); }
inline QString serverPhone() { return QStringLiteral("13800000000"); }
inline QString serverPassword() { return QStringLiteral("open sesame"); }

inline QString signInEntry(const Tour &tour) {
    return tour.say(QStringLiteral("登录 / 注册…"), QStringLiteral("Sign In / Sign Up…"));
}

inline QString signedInNotice(const Tour &tour) {
    return tour.say(QStringLiteral("● 已登录 "), QStringLiteral("● Signed in as ")) + serverAccount();
}

inline QString serverConnectedLine(const Tour &tour) {
    return tour.say(QStringLiteral("● 已连接 · %1 · 1 个会话"), QStringLiteral("● Connected · %1 · 1 session"))
        .arg(serverAccount());
}

inline QString startingLine(const Tour &tour) {
    return tour.say(QStringLiteral("○ 正在启动… · ann"), QStringLiteral("○ Starting… · ann"));
}

inline QString connectedLine(const Tour &tour) {
    return tour.say(QStringLiteral("● 已连接 · ann · 1 个会话"), QStringLiteral("● Connected · ann · 1 session"));
}

inline QString notRespondingLine(const Tour &tour) {
    return tour.say(QStringLiteral("○ Korvel 未响应，正在重试…"),
                    QStringLiteral("○ Korvel isn't responding. Retrying…"));
}

inline QString pausedLine(const Tour &tour) {
    return tour.say(QStringLiteral("⏻ 已暂停同步 · ann"), QStringLiteral("⏻ Sync paused · ann"));
}

} // namespace korvel::sim
