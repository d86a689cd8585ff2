#pragma once

class QLineEdit;

namespace korvel {

/// Hides what is typed into a field: on the screen, and in the notifications that assistive technology gets. Those of
/// Qt's own password fields carry the password.
void makeSecret(QLineEdit &field);

} // namespace korvel
