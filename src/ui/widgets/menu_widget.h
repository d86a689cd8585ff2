#pragma once

#include "ui/views/menu_entry.h"

#include <QFontMetrics>
#include <QList>
#include <QMenu>
#include <functional>

namespace korvel {

/// The component that draws the menu. It determines how titles are escaped.
enum class MenuHost {
    Program, ///< This program shows the menu as a popup.
    Panel,   ///< A panel shows the menu exported over D-Bus, where "_" marks a mnemonic.
};

/// A plain title, escaped for a QAction that `host` draws.
QString actionText(const QString &title, MenuHost host);

/// Escapes a tool tip so that Qt shows it literally, even if it looks like markup.
QString plainToolTip(const QString &text);

/// Maximum width of an entry's text, in points.
constexpr int MAX_ENTRY_WIDTH = 640;

/// The title as drawn: with its detail if both fit, else elided in the middle if it does not fit alone.
QString fittedTitle(const MenuEntry &entry, const QFontMetrics &metrics);

/// Displays a MenuView in a QMenu. Keeps its actions and updates only differences: each change is a message to the
/// panel, and a rebuilt menu flickers while it is open.
class MenuWidget {
public:
    using Chosen = std::function<void(const MenuEntry &)>;
    MenuWidget(MenuHost host, Chosen chosen);

    void apply(const MenuView &view);
    QMenu &menu() { return qmenu; }

private:
    QAction *makeAction(const MenuEntry &entry);
    void write(QAction &action, const MenuEntry &entry);

    const MenuHost host;
    Chosen chosen;
    QMenu qmenu;
    QList<QAction *> actions; ///< One per entry, in the same order.
    MenuView shown;
};

} // namespace korvel
