#include "simulator/tour/menu_look.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/checks.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto MENU_TIMEOUT = 3s;
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

/// Opens the menu with a click on the item and expects it as a window of process `owner`.
void openWith(Tour &tour, int button, qint64 owner) {
    expect(tour.pointAtItem(), u"the panel does not show the item under the pointer"_s);
    clickButton(button);
    expect(tour.waitUntil([&] { return !menusOf(owner).isEmpty(); }, MENU_TIMEOUT), u"no menu opened"_s);
    tour.waitForRest({}); // a window is there before it is painted
    // The panel puts its own where it likes.
    const QList<QRect> own = menusOf(tour.tray().processId());
    expect(std::ranges::none_of(own, [](const QRect &menu) { return menu.intersects(statusArea()); }),
           u"the menu covers the icon"_s);
}

/// Takes the screenshot and closes the menu with a key.
void closeWith(Tour &tour, const QString &key, qint64 owner, const QString &name) {
    expect(tour.screenshot(name), u"no screenshot"_s);
    pressKey(key);
    movePointer(grabScreen().rect().center());
    expect(tour.waitUntil([&] { return menusOf(owner).isEmpty(); }, MENU_TIMEOUT), key + u" does not close it"_s);
}

/// How often Up is pressed until an entry of the open menu is selected, which begins at its end.
int stepsUpTo(Tour &tour, const QString &entry) {
    const auto entries = tour.panel().menu();
    int steps = 0;
    for (auto each = entries.crbegin(); each != entries.crend(); ++each) {
        steps += each->visible && each->enabled && !each->separator ? 1 : 0;
        if (each->title == entry)
            return steps;
    }
    throw StepFailed{u"the menu has no entry "_s + entry};
}

} // namespace

void captureMenu(Tour &tour, const QString &name) {
    openWith(tour, LEFT_BUTTON, tour.tray().processId());
    closeWith(tour, u"Escape"_s, tour.tray().processId(), name);
}

void capturePanelMenu(Tour &tour, const QString &name) {
    openWith(tour, RIGHT_BUTTON, statusAreaProcess());
    closeWith(tour, u"Escape"_s, statusAreaProcess(), name);
}

void chooseByKeyboard(Tour &tour, const QString &entry, const QString &name) {
    openWith(tour, LEFT_BUTTON, tour.tray().processId());
    for (int steps = stepsUpTo(tour, entry); steps > 0; --steps)
        pressKey(u"Up"_s);
    tour.waitForRest({});
    closeWith(tour, u"Return"_s, tour.tray().processId(), name);
}

} // namespace korvel::sim
