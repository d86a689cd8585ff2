#include "benchmarks/process_cost.h"

#include <QDir>
#include <QFile>
#include <QString>

using namespace Qt::StringLiterals;

namespace korvel::bench {

namespace {

QByteArray content(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number behind a name in a file of such lines.
qint64 valueOf(const QByteArray &text, const QByteArray &name) {
    for (const QByteArray &line : text.split('\n'))
        if (line.startsWith(name))
            return line.mid(name.size()).simplified().split(' ').first().toLongLong();
    return 0;
}

} // namespace

Used usedBy(qint64 pid) {
    Used used;
    const QDir threads(u"/proc/%1/task"_s.arg(pid));
    for (const QString &thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        // Nanoseconds on a processor, nanoseconds of waiting for one, times put on one (proc(5)).
        const QList<QByteArray> schedule = content(threads.filePath(thread) + u"/schedstat"_s).simplified().split(' ');
        if (schedule.size() < 3)
            continue;
        used.cpuMs += schedule.at(0).toDouble() / 1e6;
        used.wakeUps += valueOf(content(threads.filePath(thread) + u"/status"_s), "voluntary_ctxt_switches:");
    }
    return used;
}

Held heldBy(qint64 pid) {
    const QByteArray rollup = content(u"/proc/%1/smaps_rollup"_s.arg(pid));
    return {.pss = valueOf(rollup, "Pss:"), .privateDirty = valueOf(rollup, "Private_Dirty:")};
}

} // namespace korvel::bench
