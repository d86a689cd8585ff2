#include "app/reopen.h"

#include "e2ee/report.h"

namespace korvel {

ReopenAction reopenAction(const Situation &s) {
    const QJsonObject &e2 = s.state.e2ee.e2;
    const bool authDead = s.state.health.authDead;
    // A Mac whose pairing failed is also signed out; the reason takes precedence.
    if (!s.bound || (authDead && e2State(e2) != u"pair-failed"))
        return ReopenAction::SignIn;
    if (!s.plistExists)
        return ReopenAction::Repair;
    if (e2NeedsPairing(e2, s.bound, authDead))
        return ReopenAction::ShowPairingCode;
    return ReopenAction::ToggleAgent;
}

} // namespace korvel
