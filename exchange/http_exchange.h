#pragma once

#include "exchange/messages.h"

#include <functional>

namespace korvel::exchange {

/// What an exchange depends on beyond libcurl.
struct Network {
    /// Whether no interface but loopback is up.
    std::function<bool()> isOffline;
    /// The proxy that the system's settings name for a web address, as libcurl writes it ("http://host:port"); empty:
    /// none but what the environment names, which libcurl reads. May ask the network.
    std::function<QByteArray(const QByteArray &url)> proxyFor;
    /// File with the certificates (PEM) of the authorities to trust; empty: the system's.
    QByteArray authorities = {};
};

/// Runs one exchange to its end, over HTTPS only, with certificates verified. Blocks. `progress` gets what of the file
/// has come, as it comes.
Result<HttpReply> run(const HttpTask &task, const Network &network,
                      const std::function<void(const Progress &)> &progress);

} // namespace korvel::exchange
