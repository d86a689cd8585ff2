#pragma once

#include "app/model/tray_state.h"
#include "ports/service_control.h"

namespace korvel {

/// Invalidates lookups of the agent's job that are in flight: the job's state may have changed since they started.
inline void outdateJobLookups(HealthState &health) { ++health.jobChanges; }

/// Records that the agent's job was just started. For 25 s a missing response means that the agent is starting up.
inline void countAsStarting(HealthState &health, Instant now) {
    outdateJobLookups(health);
    health.startingUntil = now + 25s;
}

/// Applies the result of a job lookup. An unknown result keeps the known state. Without a known state the job counts as
/// loaded, because only a job that is known to be unloaded counts as paused.
inline void applyJobLookup(HealthState &health, ServiceResult lookup) {
    if (lookup == ServiceResult::Unknown)
        health.jobLoaded = health.jobLoaded.value_or(true);
    else
        health.jobLoaded = lookup == ServiceResult::Succeeded;
}

/// As `countAsStarting`, for a new job or a new sign-in: also discards the known state of the job.
inline void expectNewJob(HealthState &health, Instant now) {
    countAsStarting(health, now);
    health.jobLoaded.reset();
    health.jobCheckedAt = DISTANT_PAST;
}

} // namespace korvel
