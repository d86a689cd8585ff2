#pragma once

#include "exchange/http_exchange.h"

namespace korvel::exchange {

/// The network state and settings of this system.
Network systemNetwork();

/// Implements Network::proxyFor from the system settings.
QByteArray systemProxyFor(const QByteArray &url);

} // namespace korvel::exchange
