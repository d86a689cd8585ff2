#pragma once

#include <string>

namespace korvel::native {

/// A proxy from the system settings.
struct Proxy {
    bool isHttp = false; ///< An HTTP or HTTPS proxy.
    bool isSocks = false;
    std::string host = {};
    int port = 0;
    std::string script = {}; ///< Address of the proxy auto-configuration script, if the settings name one.
};

/// The first proxy in the system settings for a URL.
Proxy proxyFor(const std::string &url);

/// The first proxy that a script, given as text, returns for a URL.
Proxy proxyByScript(const std::string &script, const std::string &url);

/// The text at a URL; empty on failure. Blocks.
std::string textAt(const std::string &url);

} // namespace korvel::native
