#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace korvel::bench {

/// A health response with `devices` devices that request to join and as many alarms, as text and parsed.
QByteArray healthText(int devices);
QJsonObject health(int devices);

} // namespace korvel::bench
