#include "app/model/fixed_config.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {
constexpr qsizetype MAX_LANGUAGES = 10; // an eleventh language would have quality 0, which means "not acceptable"
constexpr qsizetype MAX_LANGUAGE_LETTERS = 8;
constexpr qsizetype MAX_LANGUAGE_LENGTH = 35;

/// Whether `language` is a valid tag for a header: a language subtag, then subtags of ASCII letters and digits, joined
/// by "-". Excludes the neutral locale "C".
bool isLanguageTag(const QString &language) {
    const qsizetype name = language.indexOf(u'-') < 0 ? language.size() : language.indexOf(u'-');
    const auto isOfTag = [](QChar c) { return c == u'-' || (c.unicode() < 128 && c.isLetterOrNumber()); };
    return name >= 2 && name <= MAX_LANGUAGE_LETTERS && language.size() <= MAX_LANGUAGE_LENGTH &&
           std::all_of(language.begin(), language.end(), isOfTag);
}
} // namespace

QString inFolder(const QString &folder, const QString &name) {
    return folder.isEmpty() || folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

bool prefersChinese(const QStringList &preferredLanguages) {
    return !preferredLanguages.isEmpty() && preferredLanguages.first().startsWith(u"zh", Qt::CaseInsensitive);
}

QByteArray acceptLanguage(const QStringList &preferredLanguages) {
    QStringList named;
    for (const QString &language : preferredLanguages)
        if (named.size() < MAX_LANGUAGES && isLanguageTag(language) && !named.contains(language, Qt::CaseInsensitive))
            named.append(language);
    QByteArray value;
    for (qsizetype i = 0; i < named.size(); ++i)
        value += i == 0 ? named[i].toLatin1() : ", " + named[i].toLatin1() + ";q=0." + QByteArray::number(10 - i);
    return value;
}

FixedConfig makeFixedConfig(const Deployment &deployment, const LaunchEnvironment &environment) {
    FixedConfig config;
    config.ZH = prefersChinese(environment.preferredLanguages);
    config.ACCEPT_LANGUAGE = acceptLanguage(environment.preferredLanguages);
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

} // namespace korvel
