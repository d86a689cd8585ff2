#pragma once

#include "base/plain_text.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringView>
#include <initializer_list>
#include <optional>

namespace korvel {

// What is kept of JSON from outside. A response is bounded once it is parsed, so nothing that follows (a comparison, a
// menu, a window) has more to do than that.

/// How many elements of a list are kept; each may be an entry of the menu.
constexpr qsizetype MAX_ELEMENTS = 64;

/// A copy of the keys that are named, as far as they hold a boolean, a number or a text; a text is shortened to
/// `maxText` characters.
QJsonObject boundedObject(const QJsonObject &object, std::initializer_list<QStringView> keys,
                          qsizetype maxText = MAX_TEXT);

/// The first elements of an array of objects, each as `boundedObject` copies it; none when `v` is anything else.
std::optional<QJsonArray> boundedObjects(const QJsonValue &v, std::initializer_list<QStringView> keys);

/// The first elements of an array of texts, each shortened; none when `v` is anything else.
std::optional<QJsonArray> boundedTexts(const QJsonValue &v);

} // namespace korvel
