#pragma once

#include "simulator/encryption.h"

namespace korvel::sim {

// The phone. False when the state does not allow it.
bool phoneSignsIn(Encryption &encryption, const EncryptionRules &rules, qint64 now);
bool phoneSignsOut(Encryption &encryption, const EncryptionRules &rules, qint64 now);
bool phoneTypes(Encryption &encryption, const QString &code, const EncryptionRules &rules, qint64 now);
bool phoneDenies(Encryption &encryption, const EncryptionRules &rules, qint64 now);

// Other devices and alarms.
AskingDevice deviceAsks(Encryption &encryption, const QString &name, const QString &platform);
bool deviceAsksAgain(Encryption &encryption, const QString &pendingId);
AskingDevice *findDevice(Encryption &encryption, const QString &pendingId); // null when it does not ask
bool removeDevice(Encryption &encryption, const QString &pendingId);
QString raiseAlarm(Encryption &encryption, const QString &kind, const QString &text); // the alarm's id

// How the agent answers: Done, or why not.
enum class Verdict { Done, WrongCode, BadCode, Answered, NotPairing, NoReset, NoAlarm };

// The agent's endpoints.
Verdict answerDevice(Encryption &encryption, const QString &pendingId, const QString &code);
Verdict rejectDevice(Encryption &encryption, const QString &pendingId);
Verdict renewCode(Encryption &encryption, const EncryptionRules &rules, qint64 now);
Verdict dismissAlarm(Encryption &encryption, const QString &id);
Verdict acceptReset(Encryption &encryption, const EncryptionRules &rules, qint64 now);
Verdict installSpeech(Encryption &encryption, qint64 now);
Verdict leaveEncryption(Encryption &encryption, const EncryptionRules &rules, qint64 now);

} // namespace korvel::sim
