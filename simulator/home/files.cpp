#include "simulator/home/files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <sys/file.h>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr qint64 MAX_OBJECT_BYTES = 8 << 20;

} // namespace

QJsonObject readObject(const QString &path) {
    const auto content = readRegularFile(path, MAX_OBJECT_BYTES);
    return content ? QJsonDocument::fromJson(*content).object() : QJsonObject();
}

bool replaceFile(const QString &path, const QJsonObject &content) {
    return replaceFile(path, QJsonDocument(content).toJson());
}

bool appendLine(const QString &path, const QJsonObject &line) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    const QByteArray bytes = QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    return file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered) &&
           file.write(bytes) == bytes.size();
}

QList<QJsonObject> readLines(const QString &path) {
    QList<QJsonObject> lines;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return lines;
    while (!file.atEnd())
        if (const auto line = QJsonDocument::fromJson(file.readLine()); line.isObject())
            lines.append(line.object());
    return lines;
}

QJsonObject mergePatch(QJsonObject target, const QJsonObject &patch) {
    for (auto entry = patch.begin(); entry != patch.end(); ++entry) {
        const QJsonValue value = entry.value();
        if (value.isNull())
            target.remove(entry.key());
        else if (value.isObject())
            target.insert(entry.key(), mergePatch(target.value(entry.key()).toObject(), value.toObject()));
        else
            target.insert(entry.key(), value);
    }
    return target;
}

int milliseconds(const QJsonObject &object, QLatin1StringView key, int fallback) {
    const int value = object.value(key).toInt(-1);
    return value >= 0 ? value : fallback;
}

qint64 timeNow() { return QDateTime::currentMSecsSinceEpoch(); }

QString randomHex(int bytes) {
    QByteArray drawn(bytes, '\0');
    for (char &byte : drawn)
        byte = char(QRandomGenerator::system()->bounded(256));
    return QString::fromLatin1(drawn.toHex());
}

QString randomCode() { return QString::number(QRandomGenerator::system()->bounded(1'000'000)).rightJustified(6, u'0'); }

QJsonObject Document::read() const { return readObject(path); }

bool Document::change(const std::function<bool(QJsonObject &)> &event) const {
    QDir().mkpath(QFileInfo(path).path());
    QFile lock(path + ".lock"_L1); // closing it unlocks it
    if (!lock.open(QIODevice::ReadWrite) || ::flock(lock.handle(), LOCK_EX) != 0)
        return false;
    const QJsonObject before = read();
    QJsonObject after = before;
    return event(after) && (after == before || replaceFile(path, after));
}

bool Document::patch(const QJsonObject &by) const {
    return change([&by](QJsonObject &object) {
        object = mergePatch(object, by);
        return true;
    });
}

} // namespace korvel::sim
