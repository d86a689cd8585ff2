#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

namespace korvel {

/// The operator's settings, fixed when a package is built.
struct Deployment {
    QString version;
    QString edition; ///< "cn" or "intl"
    QString cnServer;
    QStringList intlServers; ///< Host name first, then three IP addresses.
    QString site;            ///< Scheme and host of the web site, without a trailing slash.
    QString updatePubkey;    ///< Base64 of a 32-byte Ed25519 public key.
};

/// The process environment at start.
struct LaunchEnvironment {
    QStringList preferredLanguages; ///< In order, such as "zh-Hans-CN".
    QString home;                   ///< The user's home directory, absolute.
    std::optional<QString> hookPort;
    std::optional<QString> korvelHome;
    std::optional<QString> automation; ///< KORVEL_TRAY_AUTOMATION
};

/// Values set once at start and never changed.
struct FixedConfig {
    bool ZH = false;            ///< Language of all texts, independent of the edition.
    QByteArray ACCEPT_LANGUAGE; ///< The user's languages, for requests to servers.
    QString EDITION;            ///< "cn" or "intl", a key of OFFICIAL_SERVERS
    QString EDITION_MARK;       ///< Identifies the build's edition in the log.
    bool IS_CN = false;
    QString DEFAULT_SERVER; ///< host:port
    QString SITE_URL;
    QString TERMS_URL;
    QString PRIVACY_URL;
    QMap<QString, QStringList> OFFICIAL_SERVERS; ///< Edition to its servers, host:port in lower case.
    QString AGENT_LOCAL; ///< Base address of the agent's loopback interface, without a trailing slash.
    QString KORVEL_HOME; ///< The agent's home directory; a path from the environment is used unchanged.
    QString AGENT_LABEL;
    QString UPDATE_PUBKEY;
    QString UPDATE_SIG_PREFIX;
    QString VERSION; ///< Version of this package.
};

/// The path of `name` in `folder`; an empty folder is the current directory.
QString inFolder(const QString &folder, const QString &name);

/// Whether Chinese texts are shown for this list of preferred languages.
bool prefersChinese(const QStringList &preferredLanguages);

/// The value of an Accept-Language header (RFC 9110): at most ten languages in descending quality; empty if there is
/// none.
QByteArray acceptLanguage(const QStringList &preferredLanguages);

FixedConfig makeFixedConfig(const Deployment &deployment, const LaunchEnvironment &environment);

} // namespace korvel
