#pragma once

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

} // namespace korvel
