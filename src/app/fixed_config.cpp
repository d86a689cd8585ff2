#include "app/fixed_config.h"

#include "platform/preferred_languages.h"

#include <QDir>
#include <QFile>
#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {
std::optional<QString> environmentValue(const char *name) {
    if (!qEnvironmentVariableIsSet(name))
        return std::nullopt;
    return qEnvironmentVariable(name);
}

/// The user's home directory: where the environment has none, the one that the user database has.
QString homeFolder() {
    if (const QString home = qEnvironmentVariable("HOME"); !home.isEmpty())
        return QDir::cleanPath(home);
    const passwd *record = ::getpwuid(::getuid());
    return record ? QFile::decodeName(record->pw_dir) : QDir::rootPath();
}
} // namespace

QString inFolder(const QString &folder, const QString &name) {
    return folder.isEmpty() || folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

bool prefersChinese(const QStringList &preferredLanguages) {
    return !preferredLanguages.isEmpty() && preferredLanguages.first().startsWith(u"zh", Qt::CaseInsensitive);
}

FixedConfig makeFixedConfig(const Deployment &deployment, const LaunchEnvironment &environment) {
    FixedConfig config;
    config.ZH = prefersChinese(environment.preferredLanguages);
    config.EDITION = deployment.edition;
    config.EDITION_MARK = u"korvel-tray-edition="_s + deployment.edition;
    config.IS_CN = deployment.edition == u"cn";
    config.DEFAULT_SERVER = config.IS_CN ? deployment.cnServer : deployment.intlServers.value(0);
    config.SITE_URL = deployment.site + (config.IS_CN ? u"/zh"_s : u"/en"_s);
    config.TERMS_URL = deployment.site + (config.IS_CN ? u"/cn/terms"_s : u"/terms"_s);
    config.PRIVACY_URL = deployment.site + (config.IS_CN ? u"/cn/privacy"_s : u"/privacy"_s);
    config.OFFICIAL_SERVERS = {{u"cn"_s, {deployment.cnServer}}, {u"intl"_s, deployment.intlServers}};
    config.AGENT_LOCAL = u"http://127.0.0.1:"_s + environment.hookPort.value_or(u"8790"_s);
    config.KORVEL_HOME = environment.korvelHome.value_or(inFolder(environment.home, u".korvel"_s));
    config.AGENT_LABEL = u"com.korvel.agent"_s;
    config.UPDATE_PUBKEY = deployment.updatePubkey;
    config.UPDATE_SIG_PREFIX = u"korvel-update/1"_s;
    config.VERSION = deployment.version;
    return config;
}

LaunchEnvironment readLaunchEnvironment() {
    return {.preferredLanguages = preferredLanguages(),
            .home = homeFolder(),
            .hookPort = environmentValue("KORVEL_HOOK_PORT"),
            .korvelHome = environmentValue("KORVEL_HOME"),
            .automation = environmentValue("KORVEL_TRAY_AUTOMATION")};
}

} // namespace korvel
