#pragma once

#include <QList>
#include <QString>

namespace korvel {

/// An entry of the Edit menu. The menu is never visible, but on macOS it delivers the standard editing keys to text
/// fields.
struct EditMenuItem {
    QString title;    ///< Empty for a separator.
    QString selector; ///< Sent to the first responder.
    QString key;      ///< Combined with Command; upper case adds Shift.
};

QString editMenuTitle();
QList<EditMenuItem> editMenu();

} // namespace korvel
