#include "simulator/home/processes.h"

#include <QDir>
#include <algorithm>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

QList<QByteArray> readWords(const QString &path) {
    QFile file(path);
    QList<QByteArray> words = file.open(QIODevice::ReadOnly) ? file.readAll().split('\0') : QList<QByteArray>();
    if (!words.isEmpty())
        words.removeLast(); // the empty text after the last zero byte
    return words;
}

} // namespace

// See proc(5).
QList<ProcessInfo> processesOfHome(const QString &home) {
    QList<ProcessInfo> found;
    for (const QString &name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        ProcessInfo process{name.toInt(), {}};
        const QString folder = "/proc/"_L1 + name;
        if (process.id == 0 || process.id == ::getpid() || QFileInfo(folder).ownerId() != ::getuid())
            continue;
        const QList<QByteArray> environment = readWords(folder + "/environ"_L1);
        if (std::ranges::none_of(environment, [&](const QByteArray &each) { return namesHome(each, home); }))
            continue;
        for (const QByteArray &word : readWords(folder + "/cmdline"_L1))
            process.commandLine.append(QFile::decodeName(word));
        if (!process.commandLine.isEmpty())
            found.append(process);
    }
    return found;
}

} // namespace korvel::sim
