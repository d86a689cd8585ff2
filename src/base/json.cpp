#include "base/json.h"

#include <algorithm>

namespace korvel {

namespace {

/// The elements of an array whose elements all have this type; none otherwise.
std::optional<QJsonArray> elementsOf(const QJsonValue &v, QJsonValue::Type type) {
    const QJsonArray all = v.toArray();
    const bool fits = std::all_of(all.begin(), all.end(), [type](const QJsonValue &e) { return e.type() == type; });
    return v.isArray() && fits ? std::optional(all) : std::nullopt;
}

/// The first elements of such an array, each replaced by `bounded` of it.
template <class Bounded>
std::optional<QJsonArray> startOfArray(const QJsonValue &v, QJsonValue::Type type, Bounded bounded) {
    const auto all = elementsOf(v, type);
    if (!all)
        return std::nullopt;
    QJsonArray start;
    for (qsizetype i = 0; i < std::min(all->size(), MAX_ELEMENTS); ++i)
        start.append(bounded(all->at(i)));
    return start;
}

} // namespace

std::optional<QStringList> jsonTexts(const QJsonValue &v) {
    const auto elements = elementsOf(v, QJsonValue::String);
    if (!elements)
        return std::nullopt;
    QStringList texts;
    for (const QJsonValue element : *elements)
        texts.append(element.toString());
    return texts;
}

std::optional<QList<QJsonObject>> jsonObjects(const QJsonValue &v) {
    const auto elements = elementsOf(v, QJsonValue::Object);
    if (!elements)
        return std::nullopt;
    QList<QJsonObject> objects;
    for (const QJsonValue element : *elements)
        objects.append(element.toObject());
    return objects;
}

QJsonObject boundedObject(const QJsonObject &object, std::initializer_list<QStringView> keys, qsizetype maxText) {
    QJsonObject bounded;
    for (const QStringView key : keys) {
        const QJsonValue value = object.value(key);
        if (value.isString())
            bounded.insert(key, shortened(value.toString(), maxText));
        else if (value.isBool() || value.isDouble())
            bounded.insert(key, value);
    }
    return bounded;
}

std::optional<QJsonArray> boundedObjects(const QJsonValue &v, std::initializer_list<QStringView> keys) {
    return startOfArray(v, QJsonValue::Object,
                        [keys](const QJsonValue &element) { return boundedObject(element.toObject(), keys); });
}

std::optional<QJsonArray> boundedTexts(const QJsonValue &v) {
    return startOfArray(v, QJsonValue::String, [](const QJsonValue &element) { return shortened(element.toString()); });
}

} // namespace korvel
