#pragma once

#include "simulator/account_store.h"
#include "simulator/agent_config.h"

namespace korvel::sim {

// This Mac's name as the account server is told it, at most 32 characters.
QString macName();

// Binds this Mac to an account, as the agent does at the end of a sign-in: records a fresh credential on the account
// server, releases the one that agent.json held, writes the new one there with the server's address and this Mac's
// name, and loads the agent's job where its file exists and it is not loaded. Launchctl's faults do not apply. False
// when it could not be recorded or written.
bool bindMac(const HomePaths &paths, const AgentConfig &config, const QString &account);

} // namespace korvel::sim
