#pragma once

class QLineEdit;

namespace korvel {

/// Hides the content of a field on the screen and in accessibility notifications. Those of Qt's own password fields
/// contain the password.
void makeSecret(QLineEdit &field);

} // namespace korvel
