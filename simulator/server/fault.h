#pragma once

#include "simulator/home/scenario.h"
#include "simulator/server/http_server.h"

namespace korvel::sim {

/// Responds to the current request for `path` with the scenario's fault for it: `faults` by path, or "*" for all other
/// paths, of the server named `server`. `act` carries out the request and passes on the correct response; it is called
/// only if the fault needs that. An unknown mode is reported on standard error and ignored.
void respondUnder(const Scenario &scenario, const QString &server, const QJsonObject &faults, const QByteArray &path,
                  HttpConnection &connection, const std::function<void(const Respond &)> &act);

} // namespace korvel::sim
