#pragma once

#include "app/model/tray_state.h"
#include "e2ee/alarms.h"
#include "e2ee/approval.h"
#include "e2ee/pairing.h"

#include <QJsonObject>
#include <QString>

namespace korvel {

/// The prompt that a new report raises.
struct E2Prompt {
    enum class Kind { None, PairWindow, Approval, Alarm };
    Kind kind = Kind::None;
    QJsonObject subject;         ///< The approval request or alarm.
    bool announceActive = false; ///< Encryption became active while the pairing window is hidden.
    bool operator==(const E2Prompt &) const = default;
};

struct PromptContext {
    bool bound = false;
    bool authDead = false;
    bool pairWindowVisible = false;
    bool e2Modal = false; ///< Any alert is open: no prompt is shown beside it, nor marked as shown.
};

/// Identity of an approval request. A new attempt counts as a new request.
QString pendKey(const QJsonObject &request);

/// Chooses the one prompt, if any, that the report in `e2ee` raises, and marks it as shown.
E2Prompt takePrompt(E2State &e2ee, PairState &pairing, const PromptContext &context);

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
