#pragma once

#include "simulator/account_store.h"
#include "simulator/agent_config.h"

namespace korvel::sim {

// This Mac's name as the account server is told it, at most 32 characters.
QString macName();

// Binds this Mac to an account, as the agent does at the end of a sign-in: records a fresh credential on the account
// server, releases the one that agent.json held, and writes the new one there with the server's address and this Mac's
// name. Starts nothing: that is the tray's part. False when it could not be recorded or written.
bool bindMac(const HomePaths &paths, const AgentConfig &config, const QString &account);

} // namespace korvel::sim
