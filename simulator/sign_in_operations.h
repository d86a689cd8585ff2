#pragma once

#include "simulator/account_book.h"

#include <QJsonObject>

namespace korvel::sim {

// What may differ about an operation of the sign-in window.
struct SignInRules {
    bool chinese = false;     // the language of the errors
    int nextSeconds = 60;     // time from one code to the next
    bool resetSignsIn = true; // a reset of the password signs in at once
    QString shownUser = {};   // the name in the reply, such as a masked one; empty: the account's
};

// What an operation leads to.
struct SignInOutcome {
    QJsonObject reply;
    QString account = {}; // the account that the Mac is to be bound to; empty: none
};

// Carries out a request {"op": ...} of the sign-in window: login, login-code, register, reset or send-code.
SignInOutcome performSignIn(AccountBook &book, const QJsonObject &request, const SignInRules &rules, qint64 now);

} // namespace korvel::sim
