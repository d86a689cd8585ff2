#include "exchange/native_proxy_mac.h"
#include "exchange/system_network.h"

namespace korvel::exchange {

QByteArray systemProxyFor(const QByteArray &url) {
    native::Proxy proxy = native::proxyFor(url.toStdString());
    if (!proxy.script.empty()) {
        const std::string script = native::textAt(proxy.script);
        proxy = script.empty() ? native::Proxy() : native::proxyByScript(script, url.toStdString());
    }
    if (!proxy.isHttp && !proxy.isSocks)
        return {};
    const QByteArray scheme = proxy.isHttp ? "http://" : "socks5h://"; // the proxy resolves the host name
    return scheme + QByteArray::fromStdString(proxy.host) + ':' + QByteArray::number(proxy.port);
}

} // namespace korvel::exchange
