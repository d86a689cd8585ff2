#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringView>
#include <optional>

namespace korvel {

/// Language of every text the user sees, settled once in the entry point.
inline bool ZH = false;

/// The one of the two texts that is in the user's language.
inline QString L(QStringView zh, QStringView en) { return (ZH ? zh : en).toString(); }

/// Wording of a failed answer of the agent: its own "error" text, or a fixed sentence where there is none.
QString errText(const std::optional<QJsonObject> &answer);

} // namespace korvel
