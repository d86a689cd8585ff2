#include "simulator/home/document.h"

#include "simulator/home/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/file.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

QJsonObject Document::read() const { return readObject(path); }

bool Document::change(const std::function<bool(QJsonObject &)> &event) const {
    QDir().mkpath(QFileInfo(path).path());
    QFile lock(path + ".lock"_L1); // unlocked when it is closed
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
