#include "benchmarks/process_cost.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <ctime>

using namespace Qt::StringLiterals;

namespace korvel::bench {

namespace {

QByteArray content(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number after `name` in a text of lines "name number".
qint64 valueOf(const QByteArray &text, const QByteArray &name) {
    for (const QByteArray &line : text.split('\n'))
        if (line.startsWith(name))
            return line.mid(name.size()).simplified().split(' ').first().toLongLong();
    return 0;
}

} // namespace

Used usedBy(qint64 pid) {
    Used used;
    clockid_t clock{};
    timespec time{};
    // The process's CPU clock includes the time of threads that have ended.
    if (::clock_getcpuclockid(static_cast<pid_t>(pid), &clock) == 0 && ::clock_gettime(clock, &time) == 0)
        used.cpuMs = static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    const QDir threads(u"/proc/%1/task"_s.arg(pid));
    for (const QString &thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        used.wakeUps += valueOf(content(threads.filePath(thread) + u"/status"_s), "voluntary_ctxt_switches:");
    return used;
}

Held heldBy(qint64 pid) {
    const QByteArray rollup = content(u"/proc/%1/smaps_rollup"_s.arg(pid));
    Held held{.pss = valueOf(rollup, "Pss:"), .privateDirty = valueOf(rollup, "Private_Dirty:")};
    for (const QString &other : QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs))
        held.sharers += other.toLongLong() != pid && content(u"/proc/%1/maps"_s.arg(other)).contains("libQt6Widgets");
    return held;
}

Resident residentOf(qint64 pid) {
    const QByteArray status = content(u"/proc/%1/status"_s.arg(pid));
    return {.now = valueOf(status, "VmRSS:"), .peak = valueOf(status, "VmHWM:")};
}

void forgetPeak(qint64 pid) {
    QFile file(u"/proc/%1/clear_refs"_s.arg(pid));
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

qint64 mainThreadNs(qint64 pid) {
    return content(u"/proc/%1/task/%1/schedstat"_s.arg(pid)).split(' ').first().toLongLong();
}

} // namespace korvel::bench
