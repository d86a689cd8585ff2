#pragma once

#include "app/model/tray_state.h"

namespace korvel {

/// Whether a silent agent counts as starting.
inline bool isStarting(const HealthState &health, Instant now) {
    return health.startingUntil && now < *health.startingUntil;
}

/// Time-dependent facts about the agent. Rules that read a Situation see no other time, so the screen changes only when
/// the Situation does.
struct Timing {
    bool starting = false;       ///< A silent agent counts as starting.
    bool longConnecting = false; ///< The agent has been running for more than a minute without being online.
    bool operator==(const Timing &) const = default;
};

inline Timing timingOf(const HealthState &health, Instant now) {
    return {.starting = isStarting(health, now),
            .longConnecting = health.connectingSince && now - *health.connectingSince > 60s};
}

/// Input of the rules for status line, icon and menu, collected once per refresh.
struct Situation {
    TrayState state;
    bool isCn = false; ///< The edition is the mainland one.
    QString version;   ///< Version of this program.
    Timing timing;
    bool bound = false;       ///< This Mac is bound to an account.
    bool plistExists = false; ///< The agent's job file exists.
    QString server;           ///< The account server in use.
    bool operator==(const Situation &) const = default;
};

} // namespace korvel
