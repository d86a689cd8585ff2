#pragma once

#include "e2ee/alarms.h"
#include "e2ee/approval.h"
#include "e2ee/pairing.h"
#include "e2ee/prompt_rules.h"

namespace korvel {

/// Shows the prompts that new reports raise, one for each report.
class Prompts {
public:
    Prompts(E2State &e, PairState &p, const Alerts &al, Notices &n, Pairing &w, Approval &ap, Alarms &s)
        : e2ee(e), pairState(p), alerts(al), notices(n), pairing(w), approval(ap), alarms(s) {}

    /// Reacts to a report that has just been stored.
    void e2Prompt(const PairContext &context);

private:
    E2State &e2ee;
    PairState &pairState;
    const Alerts &alerts;
    Notices &notices;
    Pairing &pairing;
    Approval &approval;
    Alarms &alarms;
};

} // namespace korvel
