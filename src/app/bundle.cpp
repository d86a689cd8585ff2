#include "app/bundle.h"

#include <QCoreApplication>
#include <QDir>

namespace korvel {

QString executablePath() { return QCoreApplication::applicationFilePath(); }

QString bundlePath() { return QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../..")); }

QString exchangeProgram() { return bundlePath() + QStringLiteral("/Contents/Helpers/korvel-exchange"); }

std::optional<QString> agentOverride() {
    if (!qEnvironmentVariableIsSet("KORVEL_AGENT_BIN"))
        return std::nullopt;
    return qEnvironmentVariable("KORVEL_AGENT_BIN");
}

} // namespace korvel
