#include "simulator/home/home_paths.h"

#include <QDir>

namespace korvel::sim {

QString standInRoot() { return QStringLiteral(KORVEL_STAND_IN_ROOT); }

HomePaths HomePaths::ofThisProcess() { return {QDir::cleanPath(qEnvironmentVariable("HOME"))}; }

} // namespace korvel::sim
