#pragma once

#include "fuzz/fuzz.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <cstring>
#include <functional>
#include <random>

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);

namespace korvel::fuzz {

using namespace Qt::StringLiterals;

/// The words of the target's dictionary.
inline const QStringList &words() {
    static const QStringList WORDS = [] {
        QFile file(QStringLiteral(KORVEL_FUZZ_DICTIONARY));
        require(file.open(QIODevice::ReadOnly), "the dictionary is readable");
        QStringList read;
        for (const QByteArray &line : file.readAll().split('\n'))
            read.append(QString::fromUtf8(line.mid(1).chopped(line.isEmpty() ? 0 : 1)));
        return read;
    }();
    return WORDS;
}

/// Changes one value of a JSON document, as LLVMFuzzerMutate changes bytes.
class JsonMutation {
public:
    explicit JsonMutation(unsigned seed) : random(seed) {}

    QJsonValue changed(const QJsonValue &value) {
        if (value.isObject() && below(8) != 0)
            return changedObject(value.toObject());
        if (value.isArray() && below(8) != 0)
            return changedArray(value.toArray());
        return any();
    }

private:
    qsizetype below(qsizetype end) { return static_cast<qsizetype>(random() % static_cast<unsigned>(end)); }

    QString text() {
        static const QStringList TEXTS{u""_s,          u" "_s,
                                       u"\u202eabc"_s, u"\u05d0\u05d1 1\u200f"_s,
                                       u"a\nb\t\0c"_s, u"e\u0301\u0301"_s,
                                       u"\u2028"_s,    u"\U0001f469\u200d\U0001f467"_s,
                                       u"482 913"_s,   u"\u2066x"_s,
                                       u"9"_s,         u"1.10"_s};
        QString made = below(2) ? words().at(below(words().size())) : TEXTS.at(below(TEXTS.size()));
        while (below(3) == 0 && made.size() < 2000)
            made += below(2) ? TEXTS.at(below(TEXTS.size())) : made;
        return made;
    }

    QJsonValue any() {
        static const QJsonArray VALUES{
            QJsonValue(), true, false, 0, 1, -1, 12.5, 1e300, Q_INT64_C(9007199254740993), QJsonArray(), QJsonObject()};
        return below(2) ? QJsonValue(text()) : VALUES.at(below(VALUES.size()));
    }

    QJsonObject changedObject(QJsonObject object) {
        const QStringList keys = object.keys();
        const auto choice = below(8);
        if (choice == 0 || keys.isEmpty())
            object.insert(words().at(below(words().size())), any());
        else if (choice == 1)
            object.remove(keys.at(below(keys.size())));
        else
            object[keys.at(below(keys.size()))] = changed(object[keys.at(below(keys.size()))]);
        return object;
    }

    QJsonArray changedArray(QJsonArray array) {
        const auto choice = below(6);
        if (array.isEmpty()) {
            array.append(any());
        } else if (choice == 0) {
            array.removeAt(below(array.size()));
        } else if (choice == 1) {
            for (auto more = below(8) ? 1 : below(80); more > 0; --more)
                array.append(array.at(below(array.size())));
        } else {
            const auto at = below(array.size());
            array[at] = changed(array.at(at));
        }
        return array;
    }

    std::minstd_rand random;
};

/// A custom mutator for inputs that are JSON: changes a value, or bytes. `repair` may correct the changed document.
inline size_t mutateJson(
    uint8_t *data, size_t size, size_t maxSize, unsigned seed,
    const std::function<void(QJsonDocument &)> &repair = [](QJsonDocument &) {}) {
    const Input input(data, size);
    QJsonDocument document = QJsonDocument::fromJson(input.bytes);
    if (seed % 4 == 0 || document.isNull())
        return LLVMFuzzerMutate(data, size, maxSize);
    JsonMutation mutation(seed);
    const QJsonValue value =
        document.isArray() ? mutation.changed(document.array()) : mutation.changed(document.object());
    if (value.isArray())
        document.setArray(value.toArray());
    else if (value.isObject())
        document.setObject(value.toObject());
    repair(document);
    QByteArray text = document.toJson(QJsonDocument::Compact);
    text += static_cast<char>(seed % 16 == 1 ? seed >> 8 : input.mode);
    if (static_cast<size_t>(text.size()) > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::memcpy(data, text.constData(), static_cast<size_t>(text.size()));
    return static_cast<size_t>(text.size());
}

} // namespace korvel::fuzz
