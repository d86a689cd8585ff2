#include "simulator/tour/steps.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/tour.h"

#include <QProcess>

#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto MENU_WITHIN = 3s;
constexpr auto RESTARTED_WITHIN = 20s;
constexpr auto BACK_WITHIN = 5s;
constexpr int LEFT_BUTTON = 1;
constexpr int RIGHT_BUTTON = 3;

// Lower than a menu of more than two entries, higher than a tool tip.
constexpr int SMALLEST_MENU = 80;

bool showsMenu(qint64 pid) {
    return std::ranges::any_of(windowsOf(pid),
                               [](const ScreenWindow &window) { return window.area.height() >= SMALLEST_MENU; });
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

QString leftClick(Tour &tour) { return openWith(tour, LEFT_BUTTON, tour.tray().processId(), u"menu-left-click"_s); }

QString rightClick(Tour &tour) { return openWith(tour, RIGHT_BUTTON, statusAreaProcess(), u"menu-of-the-panel"_s); }

// Three polls without any change must send nothing to the panel.
QString quiet(Tour &tour) {
    tour.panel().clearCounts();
    tour.waitUntil([&] { return tour.panel().counts().total() > 0; }, 9500ms);
    const auto counts = tour.panel().counts();
    return counts.total() == 0 ? QString() : QString::number(counts.total()) + u" signals, though nothing changed"_s;
}

// A panel that crashed or was updated comes back, and the item with it.
QString restartPanel(Tour &tour) {
    const QString panel = qEnvironmentVariable("KORVEL_PANEL");
    QProcess restart;
    restart.start(panel, {u"restart"_s});
    if (!tour.waitUntil([&] { return restart.state() == QProcess::NotRunning; }, RESTARTED_WITHIN) ||
        restart.exitCode() != 0)
        return u"the panel did not restart with "_s + panel;
    if (!tour.panel().waitForItem(BACK_WITHIN, tour.tray().processId()))
        return u"the item is not registered again"_s;
    if (!tour.waitForItemOnScreen())
        return u"the panel shows no icon"_s;
    return tour.screenshot(u"panel-restarted"_s) ? QString() : u"no screenshot"_s;
}

} // namespace

QList<Step> menuSteps() {
    return {{u"a left click opens the menu, Escape closes it"_s, leftClick},
            {u"a right click opens the panel's copy of it"_s, rightClick},
            {u"no signal for three polls without a change"_s, quiet},
            {u"the panel restarts and the item is there again"_s, restartPanel}};
}

} // namespace korvel::sim
