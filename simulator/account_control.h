#pragma once

#include "simulator/encryption_store.h"

#include <QString>

namespace korvel::sim {

// A device that asks to join the account's encryption.
struct AskedDevice {
    QString pendingId;
    QString code; // six digits, which that device shows and the user types on the Mac
};

// What happens to the Mac and its account elsewhere, and what can be read of it: Home::encryption() gives it. It works
// on the state that the agent reports, whether the agent runs or not; the tray sees the effect at its next poll.
//
// Each act returns true when it did what its name says, and false when the state does not allow it; while nobody is
// signed in on the Mac, nothing about the Mac itself is allowed.
class AccountControl {
public:
    explicit AccountControl(EncryptionStore store) : store(std::move(store)) {}

    // The state that the agent reports, "active" for example; "off" while nobody is signed in.
    QString state() const;
    // The pairing code that the Mac shows; empty when it shows none, and once it is paired.
    QString pairCode() const;
    // The code that an asking device shows; empty when no such device asks.
    QString deviceCode(const QString &pendingId) const;

    // Puts the Mac into a state by its name; "pending" with a new code, "expired" renews itself as with expire(). False
    // for a name that is no state.
    bool setState(const QString &state);
    // The Mac's code expires: "expired", then after the scenario's "renewMs" "pending" with a new code. Needs
    // "pending".
    bool expire();
    // The Mac is removed from the account: "revoked".
    bool revoke();
    // The Mac is suspended: "suspended".
    bool suspend();
    // The account approved the Mac, which has no keys however: "approved".
    bool approve();
    // Whether the account requires encryption.
    bool setRequired(bool required);
    // The agent's problem text; empty for none.
    bool setTrouble(const QString &text);
    // Whether the encrypted connection can be made; false: "relay" is "connecting".
    bool setRelay(bool up);

    // A device asks to join. `platform` as the report has it: ios, android, mac, windows, linux, or another.
    AskedDevice askDevice(const QString &name, const QString &platform);
    // The device asks anew: the attempt after the last, with a new code.
    bool reissueDevice(const QString &pendingId);
    // Whether the device can be answered already; it can when it asks.
    bool setDeviceReady(const QString &pendingId, bool ready);
    // The device is answered on another one of the account, or gives up: it leaves the list.
    bool removeDevice(const QString &pendingId);

    // Raises a security alarm with a text, or the alarm of an encryption reset. Returns its id.
    QString raiseAlarm(const QString &text);
    QString raiseResetAlarm();

    // The speech-recognition download fails.
    bool failSpeech();

private:
    EncryptionStore store;
};

} // namespace korvel::sim
