#include "simulator/tour/steps.h"

#include "simulator/tour/menu_look.h"

#include <QProcess>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto RESTARTED_WITHIN = 20s;
constexpr auto BACK_WITHIN = 5s;

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
    return {{u"a left click opens the menu, Escape closes it"_s,
             [](Tour &tour) { return lookAtMenu(tour, u"menu-left-click"_s); }},
            {u"a right click opens the panel's copy of it"_s,
             [](Tour &tour) { return lookAtPanelMenu(tour, u"menu-of-the-panel"_s); }},
            {u"no signal for three polls without a change"_s, quiet},
            {u"the panel restarts and the item is there again"_s, restartPanel}};
}

} // namespace korvel::sim
