#pragma once

#include "simulator/http_message.h"

#include <QJsonValue>

namespace korvel::sim {

// A JSON value with every "password" in it, at whatever depth, as "***".
QJsonValue withoutPasswords(const QJsonValue &value);

// A request's body as a log may hold it: a JSON object or a form with passwords as "***"; of anything else its length.
QString bodyToLog(const HttpRequest &request);

// The token of a request's Authorization field (RFC 6750); empty when there is none.
QString bearerToken(const HttpRequest &request);

} // namespace korvel::sim
