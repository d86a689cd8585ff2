#pragma once

#include "simulator/home/home.h"

#include <cstdio>

namespace korvel::sim {

/// Prints the tray's home and the commands to control it.
inline void explainHome(const Home &home) {
    std::printf("The tray runs with the home directory %s. To make things happen there:\n"
                "  export HOME=%s PATH=%s/usr/local/bin:$PATH\n"
                "  korvel-simulator set '{\"offline\": true}'     (docs/simulator.md lists what can be set)\n"
                "  korvel-simulator device ask \"Anna's phone\" ios\n"
                "  korvel-simulator kill-agent\n"
                "Quit it from its menu, or press Ctrl-C here.\n",
                qUtf8Printable(home.path()), qUtf8Printable(home.path()), qUtf8Printable(simulatedRoot()));
    std::fflush(stdout);
}

} // namespace korvel::sim
