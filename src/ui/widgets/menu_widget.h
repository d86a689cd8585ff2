#pragma once

#include "ui/views/menu_entry.h"

#include <QFontMetrics>
#include <QList>
#include <QMenu>
#include <functional>

namespace korvel {

/// Who shows the menu, which decides how a title has to be written to appear as it is.
enum class MenuHost {
    Program, ///< The menu is popped up by this program.
    Panel,   ///< The menu is exported over D-Bus, where "_" marks a mnemonic.
};

/// A plain title as the text of a QAction that `host` shows.
QString actionText(const QString &title, MenuHost host);

/// How wide the text of an entry is at most, in points.
constexpr int MAX_ENTRY_WIDTH = 640;

/// The title of an entry as it is drawn: with its detail where both fit, shortened in the middle where it alone does
/// not.
QString fittedTitle(const MenuEntry &entry, const QFontMetrics &metrics);

/// Maps a MenuView to a QMenu. Keeps its actions and changes only what differs, because each change is a message to the
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
    QList<QAction *> actions; ///< One for each entry shown, in their order.
    MenuView shown;
};

} // namespace korvel
