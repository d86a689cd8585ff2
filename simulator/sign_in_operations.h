#pragma once

#include "simulator/account_book.h"

#include <QJsonObject>

namespace korvel::sim {

// What an operation leads to.
struct SignInOutcome {
    QJsonObject reply;
    QString account = {}; // the account that the Mac is to be bound to; empty: none
};

// Carries out a request {"op": ...} of the sign-in window: login, login-code, register, reset or send-code. `chinese`:
// the language of the errors.
SignInOutcome performSignIn(AccountBook &book, const QJsonObject &request, bool chinese, qint64 now);

} // namespace korvel::sim
