#pragma once

class QWidget;

namespace korvel {

/// Closes the window by the system's key for that, such as Command-W, as its close button does.
void closeByKey(QWidget &window);

} // namespace korvel
