#include "exchange/system_network.h"

#include <cstdlib>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>

namespace korvel::exchange {

namespace {

/// False for link-local addresses: tunnels and peer-to-peer interfaces stay up with one while there is no network.
bool isOfANetwork(const sockaddr *address) {
    if (address && address->sa_family == AF_INET) {
        const auto *v4 = reinterpret_cast<const sockaddr_in *>(address);
        return (ntohl(v4->sin_addr.s_addr) >> 16) != 0xa9fe; // 169.254/16, RFC 3927
    }
    if (address && address->sa_family == AF_INET6)
        return !IN6_IS_ADDR_LINKLOCAL(&reinterpret_cast<const sockaddr_in6 *>(address)->sin6_addr);
    return false;
}

bool isOnlyLoopbackUp() {
    ifaddrs *first = nullptr;
    if (::getifaddrs(&first) != 0)
        return false;
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> all(first, &::freeifaddrs);
    constexpr unsigned int WORKING = IFF_UP | IFF_RUNNING;
    for (const ifaddrs *one = all.get(); one; one = one->ifa_next)
        if ((one->ifa_flags & (WORKING | IFF_LOOPBACK)) == WORKING && isOfANetwork(one->ifa_addr))
            return false;
    return true;
}

} // namespace

Network systemNetwork() {
    const char *authorities = std::getenv("SSL_CERT_FILE");
    return {.isOffline = isOnlyLoopbackUp, .proxyFor = systemProxyFor, .authorities = authorities};
}

} // namespace korvel::exchange
