#pragma once

#include "simulator/tour/tour.h"

/// The tray's window used as its user does, with the pointer and the keyboard. Each throws StepFailed.
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

} // namespace korvel::sim
