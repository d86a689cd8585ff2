#pragma once

#include "simulator/tour/tour.h"

namespace korvel::sim {

/// Names of AT-SPI for the kinds of controls.
namespace role {
inline const auto BUTTON = QStringLiteral("push button");
inline const auto CHOICE = QStringLiteral("radio button");
inline const auto CHECK_BOX = QStringLiteral("check box");
inline const auto FIELD = QStringLiteral("text");
inline const auto PASSWORD = QStringLiteral("password text");
} // namespace role

/// Clicks the middle of a control, once it can be used.
void clickControl(Tour &tour, const QString &role, const QString &name);
/// Clicks a field and types over what it holds. Whether a password arrived cannot be seen.
void fillIn(Tour &tour, const QString &role, const QString &name, const QString &text);
/// Waits until a control has the keyboard.
void expectFocus(Tour &tour, const QString &role, const QString &name);
/// Waits until a control can, or cannot, be used.
void expectEnabled(Tour &tour, const QString &role, const QString &name, bool enabled);

/// The element that has the keyboard; an empty one while none has.
AccessibleElement focusOf(Tour &tour);

/// Opens the tray's own menu with a left click on the item, takes a screenshot of that name, and closes the menu with
/// Escape. Throws StepFailed, as the others.
void captureMenu(Tour &tour, const QString &name);

/// The same with the panel's copy of the menu, after a right click.
void capturePanelMenu(Tour &tour, const QString &name);

/// The same with the left button, but chooses an entry with the arrow keys and Return; the screenshot shows it
/// selected.
void chooseByKeyboard(Tour &tour, const QString &entry, const QString &name);

} // namespace korvel::sim
