#pragma once

#include "simulator/tour/tour.h"

namespace korvel::sim {

/// AT-SPI's names for kinds of controls.
namespace role {
inline const auto BUTTON = QStringLiteral("push button");
inline const auto CHOICE = QStringLiteral("radio button");
inline const auto CHECK_BOX = QStringLiteral("check box");
inline const auto FIELD = QStringLiteral("text");
inline const auto PASSWORD = QStringLiteral("password text");
} // namespace role

/// Clicks the middle of a control once it is enabled. This and all others throw StepFailed.
void clickControl(Tour &tour, const QString &role, const QString &name);
/// Clicks a field and replaces its content. The content of a password field is not checked.
void fillIn(Tour &tour, const QString &role, const QString &name, const QString &text);
/// Waits until a control has the focus.
void expectFocus(Tour &tour, const QString &role, const QString &name);
/// Waits until a control is enabled or disabled.
void expectEnabled(Tour &tour, const QString &role, const QString &name, bool enabled);

/// The element with the focus; an empty one without.
AccessibleElement focusOf(Tour &tour);

/// Opens the tray's own menu with a left click on the item, takes a screenshot, and closes the menu with Escape.
void captureMenu(Tour &tour, const QString &name);

/// As above, for the menu that the panel opens after a right click.
void capturePanelMenu(Tour &tour, const QString &name);

/// As captureMenu(), but chooses an entry with the arrow keys and Return. The screenshot shows it selected.
void chooseByKeyboard(Tour &tour, const QString &entry, const QString &name);

} // namespace korvel::sim
