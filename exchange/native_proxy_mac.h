#pragma once

#include <string>

namespace korvel::native {

/// A way to a server, as the system's settings have it.
struct Proxy {
    bool isHttp = false; ///< A proxy for HTTP or HTTPS.
    bool isSocks = false;
    std::string host = {};
    int port = 0;
    std::string script = {}; ///< Address of the script that knows the proxy, where the settings name one.
};

/// The first way of those that the settings name for a web address.
Proxy proxyFor(const std::string &url);

/// The first way of those that a script (its text) names for a web address.
Proxy proxyByScript(const std::string &script, const std::string &url);

/// The text at a web address; empty when it cannot be had. Blocks.
std::string textAt(const std::string &url);

} // namespace korvel::native
