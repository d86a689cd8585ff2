#pragma once

#include <QString>
#include <functional>

namespace korvel {

/// What a request to a server on the internet depends on beyond libcurl.
struct Network {
    /// Whether no interface but loopback is up.
    std::function<bool()> isOffline;
    /// The proxy that the system's settings name for a web address, as libcurl writes it ("http://host:port"); empty:
    /// none. May ask other programs and the network, and so is called in the background.
    std::function<QString(const QString &url)> proxyFor;
    /// File with the certificates (PEM) of the authorities to trust; empty: the system's.
    QString authorities = {};
};

/// The network as the system has it.
Network systemNetwork();

} // namespace korvel
