#pragma once

#include "simulator/encryption.h"

#include <QJsonObject>

namespace korvel::sim {

// The state's name in the report, and back; nothing for a name that is none.
QString nameOf(PairState state);
std::optional<PairState> pairStateNamed(const QString &name);

// The rules that a scenario's "e2ee" object sets; a "start" of an unknown name counts as none.
EncryptionRules encryptionRules(const QJsonObject &settings);

// The "e2ee" object of the health report. `online`: the agent has reached its server.
QJsonObject encryptionReport(const Encryption &encryption, bool online);

// To a file's content and back; an object of another content gives defaults.
QJsonObject toJson(const Encryption &encryption);
Encryption encryptionFrom(const QJsonObject &stored);

} // namespace korvel::sim
