#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <optional>

namespace korvel {

/// Prints one line with the reason for a failure to standard error. Returns the exit status.
inline int refuse(const QByteArray &why) {
    std::fprintf(stderr, "%s\n", why.constData());
    return 1;
}

/// Parses a JSON object; none if the text is anything else.
inline std::optional<QJsonObject> parseObject(const QByteArray &text) {
    const QJsonDocument document = QJsonDocument::fromJson(text);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

} // namespace korvel
