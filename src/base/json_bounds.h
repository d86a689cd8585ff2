#pragma once

#include "base/plain_text.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringView>
#include <initializer_list>
#include <optional>

namespace korvel {

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
