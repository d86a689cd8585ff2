#pragma once

#include "simulator/home/program_call.h"

#include <QJsonObject>

namespace korvel::sim {

/// The Mac's name as the account server gets it, at most 32 characters.
QString macName();

/// Binds the Mac to an account, as the agent does after a sign-in: records a new credential on the account server,
/// releases the one in agent.json, and writes the new one there with the server's address and the Mac's name. Starts
/// nothing.
void bindMac(const HomePaths &paths, const QString &account);

/// Runs one sign-in request and prints the reply, or does what the scenario's "login" says.
void signInByCommand(const ProgramCall &call, const QJsonObject &request);

} // namespace korvel::sim
