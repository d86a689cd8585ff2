#include "simulator/files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvel::sim {

namespace {

constexpr qint64 LARGEST_OBJECT_FILE = 8 << 20;

bool makeFolderOf(const QString &path) { return QDir().mkpath(QFileInfo(path).path()); }

bool writeAll(int file, const QByteArray &bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(file, bytes.constData() + done, size_t(bytes.size() - done));
        if (written < 0)
            return false;
        done += written;
    }
    return true;
}

} // namespace

std::optional<QJsonObject> readObject(const QString &path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || file.size() > LARGEST_OBJECT_FILE || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return std::nullopt;
    return document.object();
}

bool replaceFile(const QString &path, const QByteArray &content, unsigned mode) {
    if (!makeFolderOf(path))
        return false;
    QByteArray temporary = QFile::encodeName(path) + ".XXXXXX";
    const int file = ::mkstemp(temporary.data()); // 0600
    if (file < 0)
        return false;
    const bool written = writeAll(file, content) && ::fchmod(file, mode_t(mode)) == 0;
    const bool closed = ::close(file) == 0;
    if (written && closed && std::rename(temporary.constData(), QFile::encodeName(path).constData()) == 0)
        return true;
    ::unlink(temporary.constData());
    return false;
}

bool appendLine(const QString &path, const QJsonObject &line) {
    makeFolderOf(path);
    const int file = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0)
        return false;
    const QByteArray bytes = QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    const bool written = ::write(file, bytes.constData(), size_t(bytes.size())) == bytes.size();
    return ::close(file) == 0 && written;
}

QList<QJsonObject> readLines(const QString &path) {
    QList<QJsonObject> lines;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return lines;
    while (!file.atEnd()) {
        const QJsonDocument document = QJsonDocument::fromJson(file.readLine());
        if (document.isObject())
            lines.append(document.object());
    }
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

bool isSameFolder(const QString &one, const QString &other) {
    const QString canonical = QFileInfo(one).canonicalFilePath();
    return one == other || (!canonical.isEmpty() && canonical == QFileInfo(other).canonicalFilePath());
}

qint64 timeNow() { return QDateTime::currentMSecsSinceEpoch(); }

} // namespace korvel::sim
