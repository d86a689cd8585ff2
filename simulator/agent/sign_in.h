#pragma once

#include "simulator/home/program_call.h"

#include <QJsonObject>

namespace korvel::sim {

/// This Mac's name as the account server gets it, at most 32 characters.
QString macName();

/// Binds this Mac to an account, as the agent does at the end of a sign-in: records a fresh credential on the account
/// server, releases the one that agent.json held, and writes the new one there with the server's address and this Mac's
/// name. Starts nothing.
void bindMac(const HomePaths &paths, const QString &account);

/// Carries out one sign-in request and prints the reply, or does as the scenario's "login" says.
void signInByCommand(const ProgramCall &call, const QJsonObject &request);

} // namespace korvel::sim
