#pragma once

#include "exchange/native_proxy_mac.h"
#include "platform/mac/native_sockets_mac.h"
#include "platform/mac/native_windows_mac.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace korvel::native {

/// The calls to the fake of macOS, and the values that it gives.
struct Fake {
    std::vector<std::string> calls;
    std::vector<std::string> pictures; ///< PNG of the pictures made: at one pixel a point, then at two.
    void *menu = nullptr;
    std::size_t menuLength = 0;
    unsigned long long modifiers = 0;
    std::string name;
    std::string languages;
    std::vector<long long> processes;
    std::map<std::size_t, bool> terminated;
    bool preventsActivation = false;
    Point mainScreen;
    std::function<void()> reopen;
    std::map<int, std::vector<TcpSocket>> sockets; ///< By process; a socket's descriptor is its place.
    Proxy proxy, scriptProxy;                      ///< By the settings, and by the script whose text is `script`.
    std::string script;
};

Fake &fake();

} // namespace korvel::native
