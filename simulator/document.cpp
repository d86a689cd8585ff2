#include "simulator/document.h"

#include "simulator/file_lock.h"
#include "simulator/files.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

namespace korvel::sim {

using namespace Qt::StringLiterals;

QJsonObject Document::read() const { return readObject(path).value_or(QJsonObject()); }

bool Document::change(const std::function<bool(QJsonObject &)> &event) const {
    QDir().mkpath(QFileInfo(path).path());
    const FileLock lock(path + ".lock"_L1);
    if (!lock.isHeld())
        return false;
    const QJsonObject before = read();
    QJsonObject after = before;
    if (!event(after))
        return false;
    return after == before || replaceFile(path, QJsonDocument(after).toJson());
}

} // namespace korvel::sim
