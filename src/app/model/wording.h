#pragma once

#include "base/result.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringView>
#include <cstddef>

namespace korvel {

/// Language of all user-visible texts, set once at start.
inline bool ZH = false;

/// Value of the Accept-Language header, by which servers choose the language of their messages; set once at start.
/// Empty: the server's default.
inline QByteArray ACCEPT_LANGUAGE;

/// Selects the text in the user's language. Both must be literals: the result refers to them without a copy.
template <std::size_t Zh, std::size_t En>
QString L(const char16_t (&zh)[Zh], const char16_t (&en)[En]) {
    const QStringView text = ZH ? QStringView(zh, Zh - 1) : QStringView(en, En - 1);
    return QString::fromRawData(text.data(), text.size());
}

/// Message of a failed agent response: its "error" text, or a fixed sentence if there is none.
QString errText(const Result<QJsonObject> &response);

} // namespace korvel
