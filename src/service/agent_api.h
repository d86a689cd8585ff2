#pragma once

#include "ports/http_client.h"
#include "service/agent_config.h"

#include <QHash>
#include <QJsonObject>
#include <memory>
#include <optional>

namespace korvel {

/// The part of a response that is worth keeping, within bounds.
using Keep = QJsonObject (*)(const QJsonObject &response);

/// One request to the agent's loopback interface.
struct AgentRequest {
    QByteArray method = "GET";
    QString path; ///< Beginning with "/".
    std::optional<QJsonObject> body = {};
    std::chrono::milliseconds timeout{0};
    Keep keep = nullptr;  ///< What is kept of the response; none: the whole.
    bool repeats = false; ///< Asked for ever: an answer that is the last one again is not parsed again.
};

/// The request as it leaves: the token header when there is a token, a body in compact JSON.
HttpRequest buildAgentRequest(const QString &agentLocal, const QString &localToken, const AgentRequest &request);

/// The JSON object that a response holds, whatever its HTTP status, as far as it is kept.
Result<QJsonObject> parseAgentReply(const HttpReply &reply, Keep keep = nullptr);

/// Whether the agent did what a request asks for.
bool agentOk(const Result<QJsonObject> &reply);

/// The one way in which the tray talks to the agent's loopback interface.
class AgentApi {
public:
    AgentApi(HttpClient &h, const FixedConfig &f, const AgentConfig &c) : http(h), fixed(f), config(c) {}

    /// Whether the configuration file holds a token at this moment.
    bool hasToken() const { return !token().isEmpty(); }
    /// Sends once, with the token as the configuration file holds it at this moment; without one, without the header.
    void send(const AgentRequest &request, Done<QJsonObject> done);

private:
    /// The last answer to a request that repeats: an idle agent says the same every time.
    struct Received {
        QByteArray body; ///< Empty: none yet.
        QJsonObject object;
    };
    static Result<QJsonObject> hear(const std::shared_ptr<Received> &last, Keep keep, HttpReply reply);
    std::shared_ptr<Received> lastAnswerTo(const AgentRequest &request);
    QString token() const { return cfgText(config.readCfg(), u"localToken"); }

    HttpClient &http;
    const FixedConfig &fixed;
    const AgentConfig &config;
    /// By path; each shared with the completions of requests, which may outlive us.
    QHash<QString, std::shared_ptr<Received>> received;
};

} // namespace korvel
