#include "platform/network.h"

#include <QNetworkInterface>
#include <QNetworkProxy>
#include <QUrl>

namespace korvel {

namespace {

bool carriesTraffic(const QNetworkInterface &interface) {
    const auto flags = interface.flags();
    if (flags.testFlag(QNetworkInterface::IsLoopBack) || !flags.testFlag(QNetworkInterface::IsUp) ||
        !flags.testFlag(QNetworkInterface::IsRunning))
        return false;
    // Tunnels and peer-to-peer interfaces stay up with nothing but an address that they gave themselves.
    const auto entries = interface.addressEntries();
    return std::any_of(entries.begin(), entries.end(),
                       [](const QNetworkAddressEntry &entry) { return !entry.ip().isLinkLocal(); });
}

bool onlyLoopbackIsUp() {
    const auto interfaces = QNetworkInterface::allInterfaces();
    return std::none_of(interfaces.begin(), interfaces.end(), carriesTraffic);
}

QString proxyOf(const QString &address) {
    const auto proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(QUrl(address)));
    const QNetworkProxy proxy = proxies.value(0);
    QUrl url;
    if (proxy.type() == QNetworkProxy::HttpProxy || proxy.type() == QNetworkProxy::HttpCachingProxy)
        url.setScheme(QStringLiteral("http"));
    else if (proxy.type() == QNetworkProxy::Socks5Proxy)
        url.setScheme(QStringLiteral("socks5h"));
    else
        return {};
    url.setHost(proxy.hostName());
    url.setPort(proxy.port());
    url.setUserName(proxy.user(), QUrl::DecodedMode);
    url.setPassword(proxy.password(), QUrl::DecodedMode);
    return url.toString(QUrl::FullyEncoded);
}

} // namespace

Network systemNetwork() {
    return {.isOffline = onlyLoopbackIsUp, .proxyFor = proxyOf, .authorities = qEnvironmentVariable("SSL_CERT_FILE")};
}

} // namespace korvel
