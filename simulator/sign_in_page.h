#pragma once

#include "simulator/http_message.h"

#include <QString>

namespace korvel::sim {

// What the browser's sign-in page shows. Texts are plain ones.
struct SignInPage {
    bool chinese = false;
    QString device = {};   // the Mac that is to be signed in
    QString userName = {}; // as typed before
    QString error = {};    // empty: no error line
};

// The page with the form, which posts `username`, `password` and `action` ("sign-in" or "cancel") to its own address.
HttpAnswer htmlOf(const SignInPage &page);

// How a sign-in ends for the browser.
enum class SignInEnd { SignedIn, Cancelled, Invalid };

// The page that says so.
HttpAnswer closingPage(SignInEnd end, bool chinese, const QString &device);

} // namespace korvel::sim
