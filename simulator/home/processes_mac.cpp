#include "simulator/home/processes.h"

#include <algorithm>
#include <cstring>
#include <sys/sysctl.h>
#include <unistd.h>
#include <vector>

namespace korvel::sim {

namespace {

std::vector<kinfo_proc> processesOfThisUser() {
    int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_UID, static_cast<int>(::getuid())};
    size_t size = 0;
    if (::sysctl(name, 4, nullptr, &size, nullptr, 0) != 0)
        return {};
    std::vector<kinfo_proc> processes(size / sizeof(kinfo_proc) + 32);
    size = processes.size() * sizeof(kinfo_proc);
    if (::sysctl(name, 4, processes.data(), &size, nullptr, 0) != 0)
        return {};
    processes.resize(size / sizeof(kinfo_proc));
    return processes;
}

/// KERN_PROCARGS2: the argument count, the executable's path, null bytes, then arguments and environment.
QByteArray argumentsOf(pid_t id) {
    int name[] = {CTL_KERN, KERN_PROCARGS2, id};
    size_t size = 0;
    if (::sysctl(name, 3, nullptr, &size, nullptr, 0) != 0)
        return {};
    QByteArray bytes(qsizetype(size), '\0');
    if (::sysctl(name, 3, bytes.data(), &size, nullptr, 0) != 0)
        return {};
    bytes.resize(qsizetype(size));
    return bytes;
}

} // namespace

QList<ProcessInfo> processesOfHome(const QString &home) {
    QList<ProcessInfo> found;
    for (const kinfo_proc &entry : processesOfThisUser()) {
        const pid_t id = entry.kp_proc.p_pid;
        const QByteArray bytes = argumentsOf(id);
        if (id == ::getpid() || entry.kp_proc.p_stat == SZOMB || bytes.size() < qsizetype(sizeof(int)))
            continue;
        int count = 0;
        std::memcpy(&count, bytes.constData(), sizeof count);
        qsizetype at = bytes.indexOf('\0', qsizetype(sizeof count));
        while (at >= 0 && at < bytes.size() && bytes[at] == '\0')
            ++at;
        QList<QByteArray> words = at < 0 ? QList<QByteArray>() : bytes.mid(at).split('\0');
        ProcessInfo process{id, {}};
        while (count-- > 0 && !words.isEmpty())
            process.commandLine.append(QFile::decodeName(words.takeFirst()));
        if (std::ranges::any_of(words, [&](const QByteArray &each) { return namesHome(each, home); }))
            found.append(process);
    }
    return found;
}

} // namespace korvel::sim
