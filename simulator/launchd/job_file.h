#pragma once

#include "simulator/home/home_paths.h"

#include <QJsonObject>

namespace korvel::sim {

/// The content of a launchd job file, an XML property list (launchd.plist(5)); empty when it is malformed, or its Label
/// cannot name a folder.
QJsonObject readJobFile(const QString &path);

/// Writes the job file that the agent's installation makes: `program` with the argument "run", at load and kept alive.
bool writeAgentJob(const HomePaths &paths, const QString &program, const QJsonObject &environment);

/// Whether a label may name a folder.
bool isSafeLabel(const QString &label);

} // namespace korvel::sim
