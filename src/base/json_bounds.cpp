#include "base/json_bounds.h"

#include <algorithm>

namespace korvel {

namespace {

/// The first elements of an array whose elements all have this type; none otherwise.
std::optional<QJsonArray> startOfArray(const QJsonValue &v, QJsonValue::Type type) {
    if (!v.isArray())
        return std::nullopt;
    const QJsonArray all = v.toArray();
    if (!std::all_of(all.begin(), all.end(), [type](const QJsonValue &element) { return element.type() == type; }))
        return std::nullopt;
    QJsonArray start;
    for (qsizetype i = 0; i < std::min(all.size(), MAX_ELEMENTS); ++i)
        start.append(all.at(i));
    return start;
}

} // namespace

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
    auto objects = startOfArray(v, QJsonValue::Object);
    if (!objects)
        return std::nullopt;
    for (QJsonValueRef element : *objects)
        element = boundedObject(element.toObject(), keys);
    return objects;
}

std::optional<QJsonArray> boundedTexts(const QJsonValue &v) {
    auto texts = startOfArray(v, QJsonValue::String);
    if (!texts)
        return std::nullopt;
    for (QJsonValueRef element : *texts)
        element = shortened(element.toString());
    return texts;
}

} // namespace korvel
