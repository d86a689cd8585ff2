#pragma once

#include "simulator/tour/tour.h"

namespace korvel::sim {

/// Opens the tray's own menu with a left click on the item, takes a screenshot of that name, and closes the menu with
/// Escape. Throws StepFailed, as the others.
void captureMenu(Tour &tour, const QString &name);

/// The same with the panel's copy of the menu, after a right click.
void capturePanelMenu(Tour &tour, const QString &name);

/// The same with the left button, but chooses an entry with the arrow keys and Return; the screenshot shows it
/// selected.
void chooseByKeyboard(Tour &tour, const QString &entry, const QString &name);

} // namespace korvel::sim
