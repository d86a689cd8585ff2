#pragma once

#include "ports/http_client.h"
#include "service/agent_config.h"

#include <QJsonObject>
#include <memory>
#include <optional>
#include <vector>

namespace korvel {

/// Reduces a response to the fields that the tray reads, with bounded sizes.
using Keep = QJsonObject (*)(const QJsonObject &response);

/// One request to the agent's loopback interface.
struct AgentRequest {
    QByteArray method = "GET";
    QString path; ///< Starts with "/".
    std::optional<QJsonObject> body = {};
    std::chrono::milliseconds timeout{0};
    Keep keep = nullptr;  ///< Applied to the response; null: keeps all of it.
    bool repeats = false; ///< Sent periodically, the same each time: an unchanged body is not parsed again.
};

/// Builds the HTTP request, with a compact JSON body, and with the token header if there is a token.
HttpRequest buildAgentRequest(const QString &agentLocal, const QString &localToken, const AgentRequest &request);

/// Parses the JSON object in a response, whatever its HTTP status, and applies `keep`.
Result<QJsonObject> parseAgentReply(const HttpReply &reply, Keep keep = nullptr);

/// Whether the agent did what a request asks for.
bool agentOk(const Result<QJsonObject> &reply);

/// Client of the agent's loopback interface. All of the tray's requests to the agent go through it.
class AgentApi {
public:
    AgentApi(HttpClient &h, const FixedConfig &f, const AgentConfig &c) : http(h), fixed(f), config(c) {}

    /// Whether the configuration file currently holds a token.
    bool hasToken() const { return !config.readCfg().localToken.isEmpty(); }
    /// Sends once, without retries. Reads the token from the configuration file for each request.
    void send(const AgentRequest &request, Done<QJsonObject> done);

private:
    /// A repeating request and the last response to it. An idle agent sends the same body every time.
    struct Repeated {
        QString path;
        QString localToken = {}; ///< In `http`.
        HttpRequest http = {};
        QByteArray body = {}; ///< Empty until the first response.
        QJsonObject object = {};
    };
    static Result<QJsonObject> parse(const std::shared_ptr<Repeated> &last, Keep keep, HttpReply reply);
    std::shared_ptr<Repeated> repeated(const AgentRequest &request, const QString &localToken);

    HttpClient &http;
    const FixedConfig &fixed;
    const AgentConfig &config;
    /// One for each path. Shared with the completions of requests, which may outlive this object.
    std::vector<std::shared_ptr<Repeated>> repeating;
};

} // namespace korvel
