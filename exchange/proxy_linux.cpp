#include "exchange/system_network.h"

namespace korvel::exchange {

QByteArray systemProxyFor(const QByteArray &) { return {}; } // libcurl reads the proxy variables itself

} // namespace korvel::exchange
