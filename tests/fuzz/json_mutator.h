#pragma once

#include "fuzz/fuzz.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <cstring>
#include <random>

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);

namespace korvel::fuzz {

using namespace Qt::StringLiterals;

/// The words of the target's dictionary.
inline const QStringList &words() {
    static const QStringList WORDS = [] {
        QFile file(QStringLiteral(KORVEL_FUZZ_DICTIONARY));
        require(file.open(QIODevice::ReadOnly), "the dictionary is readable");
        QStringList read = QString::fromUtf8(file.readAll()).split(u'"'); // a line is a word in quotes
        read.removeAll(u"\n"_s);
        return read;
    }();
    return WORDS;
}

/// Changes one value of a JSON document, as LLVMFuzzerMutate changes bytes.
class JsonMutation {
public:
    explicit JsonMutation(unsigned seed) : random(seed) {}

    QJsonValue changed(const QJsonValue &value) {
        if (value.isObject() && !seldom())
            return changedObject(value.toObject());
        if (value.isArray() && !seldom())
            return changedArray(value.toArray());
        return any();
    }

private:
    qsizetype below(qsizetype end) { return static_cast<qsizetype>(random() % static_cast<unsigned>(end)); }
    bool seldom() { return below(8) == 0; }
    template <class List>
    auto anyOf(const List &list) {
        return list.at(below(list.size()));
    }

    QJsonValue any() {
        static const QJsonArray VALUES = QJsonDocument::fromJson(R"([
            null, true, false, 0, 1, -1, 12.5, 1e300, 9007199254740993, [], {}, "", " ", "\u202eabc",
            "\u05d0\u05d1 1\u200f", "a\nb\t\u0000c", "e\u0301\u0301", "\u2028", "\ud83d\udc69\u200d\ud83d\udc67",
            "482 913", "\u2066x", "9", "1.10"])")
                                             .array();
        QJsonValue made = below(3) == 0 ? QJsonValue(anyOf(words())) : anyOf(VALUES);
        while (made.isString() && below(3) == 0 && made.toString().size() < 2000)
            made = made.toString() + (below(2) ? made : anyOf(VALUES)).toString();
        return made;
    }

    QJsonObject changedObject(QJsonObject object) {
        const QString key = object.isEmpty() || seldom() ? anyOf(words()) : anyOf(object.keys());
        if (seldom())
            object.remove(key);
        else
            object[key] = object.contains(key) ? changed(object[key]) : any();
        return object;
    }

    QJsonArray changedArray(QJsonArray array) {
        const qsizetype at = below(array.size() + 1);
        if (at == array.size())
            array.append(any());
        else if (seldom())
            array.removeAt(at);
        else if (seldom())
            for (auto more = seldom() ? below(80) : 1; more > 0; --more)
                array.append(array.at(at));
        else
            array[at] = changed(array.at(at));
        return array;
    }

    std::minstd_rand random;
};

/// Corrects the changed document; a target may set it in LLVMFuzzerInitialize.
inline void (*repair)(QJsonDocument &document, unsigned seed) = [](QJsonDocument &, unsigned) {};

} // namespace korvel::fuzz

/// Changes a value of an input that is JSON, or bytes. Each target is one file, which includes this one.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize, unsigned seed) {
    const korvel::fuzz::Input input(data, size);
    QJsonDocument document = QJsonDocument::fromJson(input.bytes);
    if (seed % 4 == 0 || document.isNull())
        return LLVMFuzzerMutate(data, size, maxSize);
    const QJsonValue value = QJsonValue::fromVariant(document.toVariant());
    document = QJsonDocument::fromVariant(korvel::fuzz::JsonMutation(seed).changed(value).toVariant());
    korvel::fuzz::repair(document, seed);
    QByteArray text = document.toJson(QJsonDocument::Compact);
    text += static_cast<char>(seed % 16 == 1 ? seed >> 8 : input.mode);
    if (document.isNull() || static_cast<size_t>(text.size()) > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::memcpy(data, text.constData(), static_cast<size_t>(text.size()));
    return static_cast<size_t>(text.size());
}
