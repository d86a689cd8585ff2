#pragma once

#include "simulator/encryption_store.h"

#include <QString>

namespace korvel::sim {

// The user's phone, as far as it pairs the Mac: Home::phone() gives it. It works on the state that the agent reports,
// whether the agent runs or not; the tray sees the effect at its next poll.
//
// Each act returns true when it did what its name says, and false when the state does not allow it.
class Phone {
public:
    explicit Phone(EncryptionStore store) : store(std::move(store)) {}

    // The phone signs in to the account: a Mac in the state "waiting" goes to "pending" and shows a code.
    bool signIn();
    // The phone leaves the account: a Mac that is being paired goes back to "waiting".
    bool signOut();
    // Types a code; nothing but "pending" takes one. The right one: `paired`, then "active" after the scenario's
    // "turnOnMs". A wrong one: `wrong` and a new code, or "pair-failed" when it was the last that the scenario's
    // "wrongCodes" allow; also true, as it was typed.
    bool type(const QString &code);
    // Types the code that the Mac shows now.
    bool typeRight();
    // Denies the Mac while it is "pending": "rejected".
    bool deny();

private:
    EncryptionStore store;
};

} // namespace korvel::sim
