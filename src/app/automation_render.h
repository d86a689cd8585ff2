#pragma once

#include <QString>

namespace korvel {

/// Draws one page of the sign-in window ("login", "code", "register" or "reset") to a PNG file, without a display.
/// Returns the exit status: 1 for an unknown page or an unwritable file, with the reason on standard error.
int renderLogin(const QString &page, const QString &file);

/// Draws an encryption window in the same way. `json` is an encryption report for "pair" and an approval request for
/// "approve"; the request's key "error" describes the last failed attempt.
int renderE2ee(const QString &kind, const QString &file, const QByteArray &json);

} // namespace korvel
