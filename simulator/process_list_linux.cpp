#include "simulator/process_list.h"

#include "simulator/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

QList<QByteArray> readWords(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> words = file.readAll().split('\0');
    if (!words.isEmpty() && words.last().isEmpty())
        words.removeLast();
    return words;
}

} // namespace

// Linux: proc(5).
QList<ProcessInfo> processesOfHome(const QString &home) {
    QList<ProcessInfo> found;
    for (const QString &name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        bool isNumber = false;
        const pid_t id = name.toInt(&isNumber);
        const QString folder = "/proc/"_L1 + name;
        if (!isNumber || id == ::getpid() || QFileInfo(folder).ownerId() != ::getuid())
            continue;
        const QList<QByteArray> environment = readWords(folder + "/environ"_L1);
        const auto belongs = [&](const QByteArray &variable) {
            return variable.startsWith("HOME=") && isSameFolder(QFile::decodeName(variable.mid(5)), home);
        };
        if (std::none_of(environment.begin(), environment.end(), belongs))
            continue;
        ProcessInfo process{id, {}};
        for (const QByteArray &word : readWords(folder + "/cmdline"_L1))
            process.commandLine.append(QFile::decodeName(word));
        if (!process.commandLine.isEmpty())
            found.append(process);
    }
    return found;
}

} // namespace korvel::sim
