#pragma once

class QWidget;

namespace korvel {

/// Closes the window with the platform's close shortcut, such as Command-W.
void closeByKey(QWidget &window);

} // namespace korvel
