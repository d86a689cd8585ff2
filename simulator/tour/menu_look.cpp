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

bool showsMenu(qint64 pid) {
    const double least = SMALLEST_MENU * QGuiApplication::primaryScreen()->devicePixelRatio();
    return std::ranges::any_of(windowsOf(pid), [&](const ScreenWindow &window) {
        return window.area.height() >= least && hangsFromPanel(window.area);
    });
}

// Opens the menu with a click on the item, expects it as a window of process `owner`, and closes it with Escape.
QString openWith(Tour &tour, int button, qint64 owner, const QString &name) {
    if (!tour.pointAtItem())
        return u"the panel does not show the item under the pointer"_s;
    clickButton(button);
    if (!tour.waitUntil([&] { return showsMenu(owner); }, MENU_WITHIN))
        return u"no menu opened"_s;
    tour.waitForRest({}); // a window is there before it is painted
    if (!tour.screenshot(name))
        return u"no screenshot"_s;
    pressKey(u"Escape"_s);
    movePointer(grabScreen().rect().center());
    return tour.waitUntil([&] { return !showsMenu(owner); }, MENU_WITHIN) ? QString() : u"Escape does not close it"_s;
}

} // namespace

QString lookAtMenu(Tour &tour, const QString &name) {
    return openWith(tour, LEFT_BUTTON, tour.tray().processId(), name);
}

QString lookAtPanelMenu(Tour &tour, const QString &name) {
    return openWith(tour, RIGHT_BUTTON, statusAreaProcess(), name);
}

} // namespace korvel::sim
