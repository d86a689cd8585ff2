#pragma once

#include "simulator/home/home_paths.h"

#include <QJsonObject>

namespace korvel::sim {

/// The content of a launchd job file, an XML property list (launchd.plist(5)); empty if it is malformed or its Label is
/// not safe.
QJsonObject readJobFile(const QString &path);

/// Writes the job file of the agent's installation: `program` with the argument "run", at load and kept alive.
bool writeAgentJob(const HomePaths &paths, const QString &program, const QJsonObject &environment);

/// Whether a label can be a folder name.
bool isSafeLabel(const QString &label);

} // namespace korvel::sim
