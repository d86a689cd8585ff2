#pragma once

class QString;

namespace korvel {

/// Draws the mainland sign-in window on the page "login", "code", "register" or "reset" into a PNG file, at two pixels
/// a point and on no display. Gives the exit status; 1 with a line on standard error for another page or a file that
/// cannot be written.
int renderLogin(const QString &page, const QString &file);

} // namespace korvel
