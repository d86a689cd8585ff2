#pragma once

#include "simulator/server/http_message.h"

namespace korvel::sim {

// The pages of a sign-in in the browser, in the language of the request. All texts are plain text.

/// The page with the form, which posts `username`, `password` and `action` ("sign-in" or "cancel") to its own address.
/// `device` is the Mac to sign in. An empty `error` shows no error line.
HttpResponse signInPage(const QString &device, const QString &userName, const QString &error);

/// The final page: "done", "cancelled", or any other text for a link that has expired.
HttpResponse closingPage(const QString &end, const QString &device);

} // namespace korvel::sim
