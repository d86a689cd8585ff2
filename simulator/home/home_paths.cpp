#include "simulator/home/home_paths.h"

#include <QDir>

namespace korvel::sim {

QString simulatedRoot() { return QStringLiteral(KORVEL_SIMULATED_ROOT); }

HomePaths HomePaths::ofThisProcess() { return {QDir::cleanPath(qEnvironmentVariable("HOME"))}; }

} // namespace korvel::sim
