#pragma once

#include "app/model/tray_state.h"
#include "app/notices.h"
#include "e2ee/pair_view.h"
#include "e2ee/prompt_rules.h"

#include <functional>

namespace korvel {

/// Puts what a new report asks for in front of the user, one thing a report.
class Prompts {
public:
    struct Hooks {
        std::function<void()> updatePairWindow;
        std::function<bool()> pairWindowVisible;
        std::function<bool()> alertOpen;
        std::function<void()> askAgain; ///< For a code that was wrong, if that could not be done at its time.
        std::function<void()> showPairWindow;
        std::function<void(const QJsonObject &)> showApprove;
        std::function<void(const QJsonObject &)> showAlarm;
        std::function<void(const Notice &)> showHUD;
    };
    Prompts(E2State &e, PairState &p, Hooks h) : e2ee(e), pairing(p), hooks(std::move(h)) {}

    /// The reaction to a report that has just been stored.
    void e2Prompt(const PairContext &context);

private:
    E2State &e2ee;
    PairState &pairing;
    Hooks hooks;
};

} // namespace korvel
