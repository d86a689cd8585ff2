#pragma once

#include <QString>

namespace korvel {

/// Draws the sign-in window on a page ("login", "code", "register" or "reset") to a PNG file, without a display. The
/// exit status: 1 for another page or an unwritable file, which one line on standard error tells.
int renderLogin(const QString &page, const QString &file);

/// The same of an encryption window: "pair" with the text of an encryption report, or "approve" with that of an
/// approval request, whose key "error" is what went wrong with the last try.
int renderE2ee(const QString &kind, const QString &file, const QByteArray &json);

} // namespace korvel
