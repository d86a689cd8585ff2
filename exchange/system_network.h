#pragma once

#include "exchange/http_exchange.h"

namespace korvel::exchange {

/// The network as the system has it.
Network systemNetwork();

/// Network::proxyFor, by the system's settings.
QByteArray systemProxyFor(const QByteArray &url);

} // namespace korvel::exchange
