#pragma once

#include <QString>

namespace korvel::sim {

// A sentence in both languages.
struct Wording {
    QStringView zh;
    QStringView en;

    QString in(bool chinese) const { return (chinese ? zh : en).toString(); }
};

// Whether a language, as KORVEL_LANG and Accept-Language (RFC 9110) name it first, is Chinese.
inline bool isChinese(QStringView language) { return language.startsWith(QStringView(u"zh"), Qt::CaseInsensitive); }

constexpr Wording WRONG_PASSWORD{u"账号或密码不正确", u"Incorrect account or password."};

} // namespace korvel::sim
