#pragma once

#include "base/plain_text.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <initializer_list>
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

/// The elements of an array of strings; none if `v` is anything else.
std::optional<QStringList> jsonTexts(const QJsonValue &v);
/// The elements of an array of objects; none if `v` is anything else.
std::optional<QList<QJsonObject>> jsonObjects(const QJsonValue &v);

// Limits on JSON from outside. Responses are bounded right after parsing, so comparing or showing them stays cheap.

/// Maximum number of list elements kept; each may become a menu entry.
constexpr qsizetype MAX_ELEMENTS = 64;

/// Copies the named keys that hold a boolean, number or string. Strings are shortened to `maxText` characters.
QJsonObject boundedObject(const QJsonObject &object, std::initializer_list<QStringView> keys,
                          qsizetype maxText = MAX_TEXT);

/// The first elements of an array of objects, each passed through `boundedObject`; none if `v` is anything else.
std::optional<QJsonArray> boundedObjects(const QJsonValue &v, std::initializer_list<QStringView> keys);

/// The first elements of an array of strings, each shortened; none if `v` is anything else.
std::optional<QJsonArray> boundedTexts(const QJsonValue &v);

} // namespace korvel
