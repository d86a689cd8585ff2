#pragma once

#include "simulator/agent/encryption.h"
#include "simulator/home/scenario.h"
#include "simulator/server/http_message.h"

#include <QObject>
#include <QSet>

namespace korvel::sim {

/// The encryption as the agent serves it: its endpoints below /e2ee/ and its part of the health report.
class AgentEncryption {
public:
    explicit AgentEncryption(Encryption e) : encryption(std::move(e)) {}

    QJsonObject report(bool online) const { return encryption.report(online, checking); }
    /// Responds to a request to one of the endpoints, with the delay of the scenario's "replies".
    void respondTo(const HttpRequest &request, const Scenario &scenario, const Respond &respond);

private:
    void respondNow(const QByteArray &path, const QJsonObject &body, const QJsonObject &forced, const Respond &respond);

    Encryption encryption;
    QSet<QString> checking; ///< Devices whose code is being checked.
    QObject timers;         ///< Context of delayed responses.
};

} // namespace korvel::sim
