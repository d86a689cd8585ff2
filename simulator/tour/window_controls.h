#pragma once

#include "simulator/tour/tour.h"

// The tray's window used as its user does, with the pointer and the keyboard. Each answer is what went wrong, empty if
// nothing.
namespace korvel::sim {

// Names of AT-SPI for the kinds of controls.
namespace role {
inline const auto BUTTON = QStringLiteral("push button");
inline const auto CHOICE = QStringLiteral("radio button");
inline const auto CHECK_BOX = QStringLiteral("check box");
inline const auto FIELD = QStringLiteral("text");
inline const auto PASSWORD = QStringLiteral("password text");
} // namespace role

// Clicks the middle of a control, once it can be used.
QString clickControl(Tour &tour, const QString &role, const QString &name);
// Clicks a field and types over what it holds. Whether a password arrived cannot be seen.
QString fillIn(Tour &tour, const QString &role, const QString &name, const QString &text);
// Waits until a control has the keyboard.
QString expectFocus(Tour &tour, const QString &role, const QString &name);
// Waits until a control can, or cannot, be used.
QString expectEnabled(Tour &tour, const QString &role, const QString &name, bool enabled);

} // namespace korvel::sim
