#pragma once

#include "simulator/account_store.h"
#include "simulator/agent_config.h"
#include "simulator/http_message.h"
#include "simulator/scenario.h"

#include <QTimer>

namespace korvel::sim {

// The agent's side of a sign-in in the browser: POST /auth/start begins one, GET /auth/status?id= says what became of
// it. Once the user has signed in, the agent binds this Mac, asked for the status or not.
class AgentBrowserSignIn {
public:
    AgentBrowserSignIn(HomePaths paths, AgentConfig config);

    HttpAnswer start(const HttpRequest &request);
    HttpAnswer status(const HttpRequest &request);

private:
    void collect();

    HomePaths paths;
    AgentConfig config;
    AccountStore store;
    QTimer watch; // runs while a sign-in is pending
};

} // namespace korvel::sim
