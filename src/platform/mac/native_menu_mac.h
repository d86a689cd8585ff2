#pragma once

class QMenu;

namespace korvel::native {

/// The NSMenu that shows `menu` and follows its changes; it lives as long as `menu`.
void *menuHandle(QMenu &menu);

} // namespace korvel::native
