#pragma once

#include "simulator/account_book.h"

#include <QJsonObject>

namespace korvel::sim {

// The name of a browser sign-in's status, as the agent reports it.
QString nameOf(BrowserSignIn::Status status);

// To a file's content and back; what is missing or of another type is empty.
QJsonObject toJson(const AccountBook &book);
AccountBook accountBookFrom(const QJsonObject &stored);

} // namespace korvel::sim
