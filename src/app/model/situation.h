#pragma once

#include "app/model/tray_state.h"

namespace korvel {

/// Whether a silent agent counts as starting.
inline bool isStarting(const HealthState &health, Instant now) {
    return health.startingUntil && now < *health.startingUntil;
}

/// What the clock says of the agent. No rule that looks at a Situation sees more of the time: so nothing changes on the
/// screen while neither this nor anything else of the Situation does.
struct Timing {
    bool starting = false;       ///< A silent agent counts as starting.
    bool longConnecting = false; ///< For more than a minute the agent has run without being online.
    bool operator==(const Timing &) const = default;
};

inline Timing timingOf(const HealthState &health, Instant now) {
    return {.starting = isStarting(health, now),
            .longConnecting = health.connectingSince && now - *health.connectingSince > 60s};
}

/// All that the rules of the status line, icon and menu look at, gathered once per refresh.
struct Situation {
    TrayState state;
    bool isCn = false; ///< The edition is the mainland one.
    QString version;   ///< Of this program.
    Timing timing;
    bool bound = false;       ///< This Mac is bound to an account.
    bool plistExists = false; ///< The agent's job file exists.
    QString server;           ///< The account server in use.
    bool operator==(const Situation &) const = default;
};

} // namespace korvel
