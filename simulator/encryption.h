#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace korvel::sim {

// Where the Mac stands in the account's end-to-end encryption.
enum class PairState {
    Off,
    Starting,
    Waiting,
    Pending,
    Approved,
    PairFailed,
    Rejected,
    Expired,
    Active,
    Revoked,
    Suspended
};

// What a scenario's "e2ee" sets. Times in milliseconds.
struct EncryptionRules {
    std::optional<PairState> start; // where a sign-in begins; none: "active", and a state that is there stays
    int wrongCodes = 5;             // the wrong code of this number ends in "pair-failed"
    int startMs = 0;                // how long "starting" lasts; 0: until something else happens
    int codeMs = 0;                 // how long a code is good; 0: for ever
    int renewMs = 3000;             // from "expired" to a new code
    int turnOnMs = 1500;            // from the right code to "active"
    int asrMs = 6000;               // how long the speech-recognition download takes
    std::optional<quint32> seed;    // makes the codes the same every time
};

// A device that asks to join.
struct AskingDevice {
    QString pendingId;
    int attempt = 1;
    QString name;
    QString platform;
    QString code; // what the device shows
    bool ready = true;
    bool busy = false; // an answer is being checked; not stored

    bool operator==(const AskingDevice &) const = default;
};

// A security alarm that was not dismissed.
struct SecurityAlarm {
    QString id;
    QString kind; // "reset", or "alert"
    QString text;

    bool operator==(const SecurityAlarm &) const = default;
};

// The speech-recognition component on this Mac.
struct SpeechInstall {
    enum class State { Absent, Downloading, Failed, Ready };
    State state = State::Absent;
    int percent = 0;
    qint64 started = 0; // time of the download's start

    bool operator==(const SpeechInstall &) const = default;
};

// The encryption state of one Mac and of what it sees of its account. Open data: the functions below change it, at the
// time `now` in milliseconds since the epoch.
struct Encryption {
    QString signIn;                      // the sign-in that it belongs to; empty while nobody is signed in
    PairState began = PairState::Active; // where it began
    PairState state = PairState::Off;
    qint64 due = 0;     // when the state goes on by itself; 0: never
    bool phone = false; // a phone is signed in to the account
    bool required = false;
    bool relay = true; // the encrypted connection can be made
    QString trouble;
    QString code;       // the Mac's own pairing code
    bool wrong = false; // the code before this one was typed wrongly
    bool paired = false;
    int wrongCodes = 0;
    QList<AskingDevice> devices;
    QList<SecurityAlarm> alarms;
    SpeechInstall speech;
    quint32 seed = 0; // of the codes
    int drawn = 0;    // codes and identities given out so far

    bool operator==(const Encryption &) const = default;
};

// Starts over for a sign-in (empty: nobody is signed in) in the state that the rules say. What belongs to the account
// and not to the Mac stays: the phone, and whether encryption is required.
void beginSignIn(Encryption &encryption, const QString &signIn, const EncryptionRules &rules, qint64 now);
// Does what has come due.
void advance(Encryption &encryption, const EncryptionRules &rules, qint64 now);
// Goes to a state: "pending" with a new code, whatever was counted forgotten.
void enter(Encryption &encryption, PairState state, const EncryptionRules &rules, qint64 now);
// Shows a new pairing code in the state "pending"; the wrong ones stay counted.
void showNewCode(Encryption &encryption, const EncryptionRules &rules, qint64 now);
// The next of the home's random six-digit codes, never the one before it.
QString drawCode(Encryption &encryption);

} // namespace korvel::sim
