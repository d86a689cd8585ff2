#pragma once

#include "base/result.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringView>
#include <cstddef>

namespace korvel {

/// Language of every text the user sees, settled once in the entry point.
inline bool ZH = false;

/// Value of the header by which servers choose the language of their sentences, settled once in the entry point; empty:
/// they choose themselves.
inline QByteArray ACCEPT_LANGUAGE;

/// The one of the two texts that is in the user's language. Both are literals: the value refers to them, not to a copy.
template <std::size_t Zh, std::size_t En>
QString L(const char16_t (&zh)[Zh], const char16_t (&en)[En]) {
    const QStringView text = ZH ? QStringView(zh, Zh - 1) : QStringView(en, En - 1);
    return QString::fromRawData(text.data(), text.size());
}

/// Wording of a failed answer of the agent: its own "error" text, or a fixed sentence where there is none.
QString errText(const Result<QJsonObject> &answer);

} // namespace korvel
