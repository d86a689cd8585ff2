#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

namespace korvel {

/// What the operator of the service decides when a package is built.
struct Deployment {
    QString version;
    QString edition; ///< "cn" or "intl"
    QString cnServer;
    QStringList intlServers; ///< Host name first, then three numeric addresses.
    QString site;            ///< Scheme and host of the web site, no slash at the end.
    QString updatePubkey;    ///< base64 of a 32-byte Ed25519 public key
};

/// What the process finds around it at start.
struct LaunchEnvironment {
    QStringList preferredLanguages; ///< The user's ordered list, such as "zh-Hans-CN".
    QString home;                   ///< The user's home directory, absolute.
    std::optional<QString> hookPort;
    std::optional<QString> korvelHome;
    std::optional<QString> automation; ///< KORVEL_TRAY_AUTOMATION
};

/// Values settled once in the entry point and never changed afterwards.
struct FixedConfig {
    bool ZH = false;            ///< Language of every text; does not depend on the edition.
    QByteArray ACCEPT_LANGUAGE; ///< The user's languages, as requests to servers name them.
    QString EDITION;            ///< "cn" or "intl", a key of OFFICIAL_SERVERS
    QString EDITION_MARK;       ///< Tells a build's edition from its log.
    bool IS_CN = false;
    QString DEFAULT_SERVER; ///< host:port
    QString SITE_URL;
    QString TERMS_URL;
    QString PRIVACY_URL;
    QMap<QString, QStringList> OFFICIAL_SERVERS; ///< Edition to its servers, host:port in lower case.
    QString AGENT_LOCAL; ///< Base address of the agent's loopback interface, no slash at the end.
    QString KORVEL_HOME; ///< The agent's home directory; what the environment names is used as it stands.
    QString AGENT_LABEL;
    QString UPDATE_PUBKEY;
    QString UPDATE_SIG_PREFIX;
    QString VERSION; ///< Version of this package.
};

/// The path of `name` in `folder`; an empty folder is the current one.
QString inFolder(const QString &folder, const QString &name);

/// Whether texts are Chinese for this list of preferred languages.
bool prefersChinese(const QStringList &preferredLanguages);

/// The user's languages as the value of an Accept-Language header (RFC 9110): at most ten, each less wanted than the
/// one before; empty when there is none.
QByteArray acceptLanguage(const QStringList &preferredLanguages);

FixedConfig makeFixedConfig(const Deployment &deployment, const LaunchEnvironment &environment);

} // namespace korvel
