#pragma once

#include <QList>
#include <QString>

namespace korvel {

/// One entry of the Edit menu that is never seen: on macOS the standard editing keys reach text fields through it.
struct EditMenuItem {
    QString title;    ///< Empty: a separator.
    QString selector; ///< Sent to the first responder.
    QString key;      ///< With Command; upper case adds Shift.
};

QString editMenuTitle();
QList<EditMenuItem> editMenu();

} // namespace korvel
