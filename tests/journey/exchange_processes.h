#pragma once

#include <QDir>
#include <QFile>

namespace korvel::test {

/// A process as proc(5) tells of it: "PID (NAME) STATE PARENT ..."
struct Process {
    explicit Process(const QString &pid) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
        const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        const qsizetype begin = text.indexOf('(') + 1, end = text.lastIndexOf(')');
        const QList<QByteArray> rest = text.mid(end + 2).split(' ');
        name = text.mid(begin, end - begin);
        parent = rest.value(1).toLongLong();
        lives = !rest.value(0).isEmpty() && rest.value(0) != "Z";
    }
    QByteArray name;
    qint64 parent = 0;
    bool lives = false;
};

/// The runs of korvel-exchange that a process has started. Other facts about them are hidden.
inline QList<qint64> exchangesOf(qint64 parent) {
    QList<qint64> found;
    for (const QString &pid : QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs)) {
        const Process process(pid);
        if (process.lives && process.parent == parent && process.name == "korvel-exchange")
            found.append(pid.toLongLong());
    }
    return found;
}

} // namespace korvel::test
