#include "simulator/scenario.h"

#include "simulator/files.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <fcntl.h>
#include <sys/file.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

QByteArray digestOf(const QByteArray &text) {
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex();
}

} // namespace

Scenario Scenario::read(const HomePaths &paths) {
    Scenario scenario;
    scenario.paths = paths;
    scenario.content = readObject(paths.scenario()).value_or(QJsonObject{});
    scenario.digest = digestOf(QJsonDocument(scenario.content).toJson(QJsonDocument::Compact));
    return scenario;
}

bool Scenario::write(const HomePaths &paths, const QJsonObject &values) {
    const bool written = replaceFile(paths.scenario(), QJsonDocument(values).toJson());
    QDir(paths.turns()).removeRecursively();
    return written;
}

bool Scenario::takeTurn(const QString &key, const QJsonObject &fault) const {
    const int times = fault.value("times"_L1).toInt(-1);
    if (times < 0)
        return true;
    QDir().mkpath(paths.turns());
    QFile counter(paths.turns() + u'/' + QString::fromLatin1(digestOf(key.toUtf8()).left(32)));
    if (!counter.open(QIODevice::ReadWrite) || ::flock(counter.handle(), LOCK_EX) != 0)
        return false;
    const QList<QByteArray> words = counter.readAll().split(' ');
    const int taken = words.size() == 2 && words[0] == digest ? words[1].toInt() : 0;
    if (taken >= times)
        return false;
    counter.seek(0);
    counter.write(digest + ' ' + QByteArray::number(taken + 1));
    counter.flush();
    counter.resize(counter.pos());
    return true; // closing the file releases the lock
}

} // namespace korvel::sim
