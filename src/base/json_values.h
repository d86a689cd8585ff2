#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>
#include <limits>
#include <optional>

namespace korvel {

// Typed access to JSON from outside: a value of the wrong type, also inside an array, counts as absent.

inline std::optional<bool> jsonBool(const QJsonValue &v) {
    return v.isBool() ? std::optional(v.toBool()) : std::nullopt;
}

/// An integer; none if it has a fraction or exceeds 64 bits.
inline std::optional<qint64> jsonInteger(const QJsonValue &v) {
    constexpr qint64 NONE = std::numeric_limits<qint64>::min();
    const qint64 number = v.toInteger(NONE);
    return number == NONE ? std::nullopt : std::optional(number);
}

inline std::optional<QString> jsonText(const QJsonValue &v) {
    return v.isString() ? std::optional(v.toString()) : std::nullopt;
}

inline std::optional<QStringList> jsonTexts(const QJsonValue &v) {
    if (!v.isArray())
        return std::nullopt;
    QStringList texts;
    const QJsonArray elements = v.toArray();
    for (const QJsonValue element : elements) {
        if (!element.isString())
            return std::nullopt;
        texts.append(element.toString());
    }
    return texts;
}

inline std::optional<QList<QJsonObject>> jsonObjects(const QJsonValue &v) {
    if (!v.isArray())
        return std::nullopt;
    QList<QJsonObject> objects;
    const QJsonArray elements = v.toArray();
    for (const QJsonValue element : elements) {
        if (!element.isObject())
            return std::nullopt;
        objects.append(element.toObject());
    }
    return objects;
}

} // namespace korvel
