#pragma once

#include "simulator/server/http_message.h"

namespace korvel::sim {

// The pages of a sign-in in the browser, in the language of the request. Texts are plain ones.

/// The page with the form, which posts `username`, `password` and `action` ("sign-in" or "cancel") to its own address.
/// `device` is the Mac that is to be signed in; an empty `error` shows no error line.
HttpResponse signInPage(const QString &device, const QString &userName, const QString &error);

/// The page that follows: "done", "cancelled", or anything else for a link that no longer works.
HttpResponse closingPage(const QString &end, const QString &device);

} // namespace korvel::sim
