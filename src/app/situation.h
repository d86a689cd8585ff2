#pragma once

#include "app/fixed_config.h"
#include "app/tray_state.h"

namespace korvel {

/// All that the rules of the status line, icon and menu look at, gathered once per refresh; lives no longer than that.
struct Situation {
    const TrayState &state;
    const FixedConfig &config;
    Instant now;
    bool bound = false;       ///< This Mac is bound to an account.
    bool plistExists = false; ///< The agent's job file exists.
    QString server;           ///< The account server in use.
};

/// Whether a silent agent counts as starting.
inline bool isStarting(const HealthState &health, Instant now) {
    return health.startingUntil && now < *health.startingUntil;
}

} // namespace korvel
