#include "platform/mac/native_menu_mac.h"

#include <QMenu>

namespace korvel::native {

void *menuHandle(QMenu &menu) { return (__bridge void *)menu.toNSMenu(); }

} // namespace korvel::native
