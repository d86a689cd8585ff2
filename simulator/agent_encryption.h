#pragma once

#include "simulator/encryption.h"
#include "simulator/http_message.h"
#include "simulator/scenario.h"

#include <QObject>
#include <QSet>

namespace korvel::sim {

// The agent's side of the encryption: its endpoints below /e2ee/, and the state that its health report shows.
class AgentEncryption {
public:
    explicit AgentEncryption(Encryption e) : encryption(std::move(e)) {}

    // What the health report says of it, devices marked whose answer is being checked.
    QJsonObject report(bool online) const;
    // Answers a request to one of them, later where the scenario's "replies" say so.
    void answer(const HttpRequest &request, const Scenario &scenario, const Respond &respond);

private:
    void answerNow(const QByteArray &path, const QJsonObject &body, const Scenario &scenario, const QJsonObject &forced,
                   const Respond &respond);

    Encryption encryption;
    QSet<QString> checking; // devices whose answer is being checked; forgotten when the agent ends
    QObject timers;         // what is to be answered later ends with it
};

} // namespace korvel::sim
