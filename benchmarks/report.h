#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace korvel::bench {

/// A health answer with that many devices that ask to join, and that many alarms, as text and parsed.
QByteArray healthText(int devices);
QJsonObject health(int devices);

} // namespace korvel::bench
