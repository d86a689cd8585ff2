#pragma once

#include "platform/http_client.h"
#include "service/agent_config.h"

#include <QJsonObject>
#include <memory>
#include <optional>

namespace korvel {

/// One request to the agent's loopback interface.
struct AgentRequest {
    QByteArray method = "GET";
    QString path; ///< Beginning with "/".
    std::optional<QJsonObject> body = {};
    std::chrono::milliseconds timeout{0};
};

/// The request as it leaves: the token header when there is a token, a body in compact JSON.
HttpRequest buildAgentRequest(const QString &agentLocal, const QString &localToken, const AgentRequest &request);

/// The JSON object that an answer holds, whatever its HTTP status.
Result<QJsonObject> parseAgentReply(const HttpReply &reply);

/// The one way in which the tray talks to the agent's loopback interface.
class AgentApi {
public:
    AgentApi(HttpClient &h, const FixedConfig &f, const AgentConfig &c) : http(h), fixed(f), config(c) {}

    /// Whether the configuration file holds a token at this moment.
    bool hasToken() const { return !token().isEmpty(); }
    /// Sends once, with the token as the configuration file holds it at this moment; without one, without the header.
    void send(const AgentRequest &request, Done<QJsonObject> done);

private:
    /// The last answer: an idle agent says the same in every poll.
    struct Heard {
        QByteArray body; ///< Never empty.
        QJsonObject object;
    };
    static Result<QJsonObject> hear(std::optional<Heard> &last, HttpReply reply);
    QString token() const { return cfgText(config.readCfg(), u"localToken"); }

    HttpClient &http;
    const FixedConfig &fixed;
    const AgentConfig &config;
    /// Shared with the completions of requests, which may outlive us.
    std::shared_ptr<std::optional<Heard>> last = std::make_shared<std::optional<Heard>>();
};

} // namespace korvel
