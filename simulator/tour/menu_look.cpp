#include "simulator/tour/menu_look.h"

#include "simulator/desktop/screen.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto MENU_WITHIN = 3s;
constexpr int LEFT_BUTTON = 1;
constexpr int RIGHT_BUTTON = 3;

// Lower than a menu of more than two entries, higher than a tool tip and a notice (in points).
constexpr int SMALLEST_MENU = 80;

QList<QRect> menusOf(qint64 pid) {
    const double least = SMALLEST_MENU * QGuiApplication::primaryScreen()->devicePixelRatio();
    QList<QRect> menus;
    for (const ScreenWindow &window : windowsOf(pid))
        if (window.area.height() >= least && hangsFromPanel(window.area))
            menus.append(window.area);
    return menus;
}

bool showsMenu(qint64 pid) { return !menusOf(pid).isEmpty(); }

// Opens the menu with a click on the item and expects it as a window of process `owner`.
QString openWith(Tour &tour, int button, qint64 owner) {
    if (!tour.pointAtItem())
        return u"the panel does not show the item under the pointer"_s;
    clickButton(button);
    if (!tour.waitUntil([&] { return showsMenu(owner); }, MENU_WITHIN))
        return u"no menu opened"_s;
    tour.waitForRest({}); // a window is there before it is painted
    // The panel puts its own where it likes.
    const QList<QRect> own = menusOf(tour.tray().processId());
    return std::ranges::any_of(own, [](const QRect &menu) { return menu.intersects(statusArea()); })
               ? u"the menu covers the icon"_s
               : QString();
}

// Takes the screenshot and closes the menu with a key.
QString closeWith(Tour &tour, const QString &key, qint64 owner, const QString &name) {
    if (!tour.screenshot(name))
        return u"no screenshot"_s;
    pressKey(key);
    movePointer(grabScreen().rect().center());
    return tour.waitUntil([&] { return !showsMenu(owner); }, MENU_WITHIN) ? QString() : key + u" does not close it"_s;
}

QString lookWith(Tour &tour, int button, qint64 owner, const QString &name) {
    const QString wrong = openWith(tour, button, owner);
    return wrong.isEmpty() ? closeWith(tour, u"Escape"_s, owner, name) : wrong;
}

// How often Up is pressed until an entry of the open menu is selected, which begins at its end; 0 without such an
// entry.
int stepsUpTo(Tour &tour, const QString &entry) {
    const auto entries = tour.panel().menu();
    int steps = 0;
    for (auto each = entries.crbegin(); each != entries.crend(); ++each) {
        steps += each->visible && each->enabled && !each->separator ? 1 : 0;
        if (each->title == entry)
            return steps;
    }
    return 0;
}

} // namespace

QString lookAtMenu(Tour &tour, const QString &name) {
    return lookWith(tour, LEFT_BUTTON, tour.tray().processId(), name);
}

QString lookAtPanelMenu(Tour &tour, const QString &name) {
    return lookWith(tour, RIGHT_BUTTON, statusAreaProcess(), name);
}

QString chooseByKeyboard(Tour &tour, const QString &entry, const QString &name) {
    const qint64 owner = tour.tray().processId();
    if (QString wrong = openWith(tour, LEFT_BUTTON, owner); !wrong.isEmpty())
        return wrong;
    const int steps = stepsUpTo(tour, entry);
    if (steps == 0)
        return u"the menu has no entry "_s + entry;
    for (int i = 0; i < steps; ++i)
        pressKey(u"Up"_s);
    tour.waitForRest({});
    return closeWith(tour, u"Return"_s, owner, name);
}

} // namespace korvel::sim
