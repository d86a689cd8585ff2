#pragma once

#include "exchange/messages.h"

#include <functional>

namespace korvel::exchange {

/// The environment of an exchange.
struct Network {
    /// Whether all interfaces but loopback are down.
    std::function<bool()> isOffline;
    /// The proxy from the system settings for a URL, in libcurl's notation ("http://host:port"). Empty: only the proxy
    /// from the environment, which libcurl reads. May use the network.
    std::function<QByteArray(const QByteArray &url)> proxyFor;
    /// Certificate file (PEM) of the trusted authorities; empty: the system's.
    QByteArray authorities = {};
};

/// Runs one exchange, over HTTPS only, with certificate verification. Blocks. `progress` reports the bytes of the file
/// as they arrive.
Result<HttpReply> run(const HttpTask &task, const Network &network,
                      const std::function<void(const Progress &)> &progress);

} // namespace korvel::exchange
