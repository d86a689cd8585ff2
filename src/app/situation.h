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

/// The agent's job was just started: for a while its silence means that it comes up.
inline void countAsStarting(HealthState &health, Instant now) { health.startingUntil = now + 25s; }

/// As `countAsStarting`, of a job or a sign-in that is another one now: what was seen before says nothing about it.
inline void expectNewJob(HealthState &health, Instant now) {
    countAsStarting(health, now);
    health.jobLoaded.reset();
    health.jobCheckedAt = DISTANT_PAST;
}

/// Whether a silent agent counts as starting.
inline bool isStarting(const HealthState &health, Instant now) {
    return health.startingUntil && now < *health.startingUntil;
}

} // namespace korvel
