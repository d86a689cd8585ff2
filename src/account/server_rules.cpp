#include "account/server_rules.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

// Avoids regular expressions: the address is read at every refresh, and only this code would load their library.

constexpr qsizetype MAX_HOST = 253;

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }
bool isLetterOrDigit(QChar c) { return isDigit(c) || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }
bool isOfHost(QChar c) { return isLetterOrDigit(c) || c == u'.' || c == u'-'; }

bool isHost(QStringView text) {
    return !text.isEmpty() && text.size() <= MAX_HOST && isLetterOrDigit(text.front()) &&
           std::all_of(text.begin(), text.end(), isOfHost);
}

/// Whether `text` is digits only, with an optional sign.
bool isDecimal(QStringView text) {
    const QStringView digits = text.startsWith(u'+') || text.startsWith(u'-') ? text.sliced(1) : text;
    return !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), isDigit);
}

std::optional<int> parsePort(const QString &text) {
    if (!isDecimal(text))
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
    if (!isHost(pieces.first()))
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

QString serverOf(const FixedConfig &config, const QString &stored) {
    const std::optional<QString> server = normalizeServer(stored);
    return server && !isForeignServer(config, *server) ? *server : config.DEFAULT_SERVER;
}

} // namespace korvel
