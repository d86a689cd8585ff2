#include "account/server_rules.h"

#include "service/agent_config.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

std::optional<int> parsePort(const QString &text) {
    static const QRegularExpression DECIMAL(QRegularExpression::anchoredPattern(u"[+-]?[0-9]+"_s));
    if (!DECIMAL.match(text).hasMatch())
        return std::nullopt;
    bool fits = false;
    const qlonglong port = text.toLongLong(&fits);
    if (!fits || port < 1 || port > 65535)
        return std::nullopt;
    return static_cast<int>(port);
}

} // namespace

std::optional<QString> normalizeServer(const QString &text) {
    QString rest = text.trimmed();
    for (const QString &scheme : {u"https://"_s, u"http://"_s, u"wss://"_s})
        if (rest.startsWith(scheme, Qt::CaseInsensitive))
            rest.remove(0, scheme.size());
    while (rest.endsWith(u'/'))
        rest.chop(1);
    const QStringList pieces = rest.split(u':');
    if (pieces.size() > 2)
        return std::nullopt;
    static const QRegularExpression HOST(QRegularExpression::anchoredPattern(u"[A-Za-z0-9][A-Za-z0-9.-]{0,252}"_s));
    if (!HOST.match(pieces.first()).hasMatch())
        return std::nullopt;
    const std::optional<int> port = pieces.size() == 2 ? parsePort(pieces.last()) : 443;
    if (!port)
        return std::nullopt;
    return pieces.first() + u':' + QString::number(*port);
}

bool isForeignServer(const FixedConfig &config, const QString &address) {
    const QString lower = address.toLower();
    for (auto it = config.OFFICIAL_SERVERS.begin(); it != config.OFFICIAL_SERVERS.end(); ++it)
        if (it.key() != config.EDITION && it.value().contains(lower))
            return true;
    return false;
}

QString serverOf(const FixedConfig &config, const QJsonObject &cfg) {
    const std::optional<QString> stored = normalizeServer(cfgText(cfg, u"server"));
    return stored && !isForeignServer(config, *stored) ? *stored : config.DEFAULT_SERVER;
}

bool bound(const QJsonObject &cfg) { return !cfgText(cfg, u"agentToken").isEmpty(); }

} // namespace korvel
