#pragma once

#include "simulator/agent/encryption.h"
#include "simulator/home/scenario.h"
#include "simulator/server/http_message.h"

#include <QObject>
#include <QSet>

namespace korvel::sim {

/// The agent's side of the encryption: its endpoints below /e2ee/, and the state in its health report.
class AgentEncryption {
public:
    explicit AgentEncryption(Encryption e) : encryption(std::move(e)) {}

    /// Its part of the health report.
    QJsonObject report(bool online) const { return encryption.report(online, checking); }
    /// Responds to a request to one of them, later where the scenario's "replies" say so.
    void respondTo(const HttpRequest &request, const Scenario &scenario, const Respond &respond);

private:
    void respondNow(const QByteArray &path, const QJsonObject &body, const QJsonObject &forced, const Respond &respond);

    Encryption encryption;
    QSet<QString> checking; ///< Devices whose code is being checked; forgotten when the agent ends.
    QObject timers;         ///< A response that is due later ends with it.
};

} // namespace korvel::sim
