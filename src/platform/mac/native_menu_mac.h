#pragma once

class QMenu;

namespace korvel::native {

/// The NSMenu that mirrors `menu`; valid as long as `menu`.
void *menuHandle(QMenu &menu);

} // namespace korvel::native
