#include "ui/views/menu_entry.h"

#include "base/plain_text.h"

namespace korvel {

MenuEntry menuSeparator() { return {}; }

MenuEntry menuLine(const QString &title) { return {.title = singleLine(title)}; }

MenuEntry menuItem(const QString &title, Action action, const QString &toolTip) {
    return {.title = singleLine(title), .action = action, .enabled = true, .toolTip = singleLine(toolTip)};
}

} // namespace korvel
