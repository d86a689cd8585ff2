#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "ports/service_control.h"

namespace korvel {

/// The agent's job may be in another state now than a look at it that is under way finds.
inline void outdateLooks(HealthState &health) { ++health.jobChanges; }

/// The agent's job was just started: for a while its silence means that it comes up.
inline void countAsStarting(HealthState &health, Instant now) {
    outdateLooks(health);
    health.startingUntil = now + 25s;
}

/// Writes what a look at the job found. One that found nothing out leaves what is known; where nothing is, an installed
/// job counts as loaded, because only one that is known not to be has been paused.
inline void applyLook(HealthState &health, ServiceResult look) {
    if (look == ServiceResult::Unknown)
        health.jobLoaded = health.jobLoaded.value_or(true);
    else
        health.jobLoaded = look == ServiceResult::Succeeded;
}

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

/// All that the rules of the status line, icon and menu look at, gathered once per refresh; lives no longer than that.
struct Situation {
    const TrayState &state;
    const FixedConfig &config;
    Timing timing;
    bool bound = false;       ///< This Mac is bound to an account.
    bool plistExists = false; ///< The agent's job file exists.
    QString server;           ///< The account server in use.
};

/// A situation that is kept, to see whether the next one is another.
struct SeenSituation {
    TrayState state;
    Timing timing;
    bool bound;
    bool plistExists;
    QString server;

    explicit SeenSituation(const Situation &s)
        : state(s.state), timing(s.timing), bound(s.bound), plistExists(s.plistExists), server(s.server) {}
    bool is(const Situation &s) const {
        return timing == s.timing && bound == s.bound && plistExists == s.plistExists && server == s.server &&
               state == s.state;
    }
};

} // namespace korvel
