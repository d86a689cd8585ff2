#include "exchange/system_network.h"

namespace korvel::exchange {

QByteArray systemProxyFor(const QByteArray &) { return {}; } // libcurl reads the environment's own

} // namespace korvel::exchange
