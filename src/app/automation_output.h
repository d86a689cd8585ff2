#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <optional>

namespace korvel {

/// Says in one line on standard error why a mode does not do its job; gives the exit status for that.
inline int refuse(const QByteArray &why) {
    std::fprintf(stderr, "%s\n", why.constData());
    return 1;
}

/// A text as a JSON object; none when it is something else.
inline std::optional<QJsonObject> parseObject(const QByteArray &text) {
    const QJsonDocument document = QJsonDocument::fromJson(text);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

} // namespace korvel
