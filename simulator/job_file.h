#pragma once

#include "simulator/home_paths.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace korvel::sim {

// What a launchd job file says, as far as it is played here.
struct JobFile {
    QString label;
    QStringList programArguments;
    QMap<QString, QString> environment;
    bool runAtLoad = false;
    bool keepAlive = false;
    QString outputPath = {}; // StandardOutPath; empty: discarded
    QString errorPath = {};  // StandardErrorPath; empty: discarded
};

// Reads the XML form of a property list (see launchd.plist(5)): string, integer, true, false, array, dict. Nothing when
// it is malformed, has an unsafe or no Label, or no ProgramArguments.
std::optional<JobFile> parseJobFile(const QByteArray &text);

// The same from a file of at most 1 MiB.
std::optional<JobFile> readJobFile(const QString &path);

// The text of a job file.
QByteArray jobFileText(const JobFile &job);

// The job that the agent's installation makes: `program` run with "run", at load and kept alive.
JobFile agentJobFile(const HomePaths &paths, const QString &program);

// Whether a label may name a folder: letters, digits, ".", "_", "-", and not only dots.
bool isSafeLabel(const QString &label);

} // namespace korvel::sim
