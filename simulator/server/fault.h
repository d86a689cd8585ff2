#pragma once

#include "simulator/home/scenario.h"
#include "simulator/server/http_server.h"

namespace korvel::sim {

/// Responds to the current request for `path` as the scenario's fault for it wants: `faults` by path, or "*" for every
/// other path, of the server named `server`. `act` does what was requested and gives the right response; it is called
/// only where the fault needs that. A mode of an unknown name is reported on standard error and counts as none.
void respondUnder(const Scenario &scenario, const QString &server, const QJsonObject &faults, const QByteArray &path,
                  HttpConnection &connection, const std::function<void(const Respond &)> &act);

} // namespace korvel::sim
