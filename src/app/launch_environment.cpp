#include "app/launch_environment.h"

#include "app/system_parts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <pwd.h>
#include <unistd.h>

namespace korvel {

namespace {

std::optional<QString> environmentValue(const char *name) {
    if (!qEnvironmentVariableIsSet(name))
        return std::nullopt;
    return qEnvironmentVariable(name);
}

/// The user's home directory: from the environment, else from the user database.
QString homeFolder() {
    if (const QString home = qEnvironmentVariable("HOME"); !home.isEmpty())
        return QDir::cleanPath(home);
    const passwd *record = ::getpwuid(::getuid());
    return record ? QFile::decodeName(record->pw_dir) : QDir::rootPath();
}

} // namespace

LaunchEnvironment readLaunchEnvironment() {
    return {.preferredLanguages = preferredLanguages(),
            .home = homeFolder(),
            .hookPort = environmentValue("KORVEL_HOOK_PORT"),
            .korvelHome = environmentValue("KORVEL_HOME"),
            .automation = environmentValue("KORVEL_TRAY_AUTOMATION")};
}

QString executablePath() { return QCoreApplication::applicationFilePath(); }

QString bundlePath() { return QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../..")); }

QString exchangeProgram() { return bundlePath() + QStringLiteral("/Contents/Helpers/korvel-exchange"); }

std::optional<QString> agentOverride() { return environmentValue("KORVEL_AGENT_BIN"); }

} // namespace korvel
