#include "journey/exchange_processes.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace korvel::test {

namespace {

struct Process {
    QByteArray name;
    QByteArray state;
    qint64 parent = 0;
};

/// "PID (NAME) STATE PARENT ..."
Process look(const QString &pid) {
    QFile file(u"/proc/%1/stat"_s.arg(pid));
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const qsizetype begin = text.indexOf('(') + 1, end = text.lastIndexOf(')');
    const QList<QByteArray> rest = text.mid(end + 2).split(' ');
    return {text.mid(begin, end - begin), rest.value(0), rest.value(1).toLongLong()};
}

bool lives(const Process &process) { return !process.state.isEmpty() && process.state != "Z"; }

} // namespace

QList<qint64> exchangesOf(qint64 parent) {
    QList<qint64> found;
    for (const QString &pid : QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs)) {
        const Process process = look(pid);
        if (process.parent == parent && process.name == "korvel-exchange" && lives(process))
            found.append(pid.toLongLong());
    }
    return found;
}

bool isRunning(qint64 pid) { return lives(look(QString::number(pid))); }

} // namespace korvel::test
