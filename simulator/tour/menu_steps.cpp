#include "simulator/tour/controls.h"
#include "simulator/tour/steps.h"

#include <QProcess>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

/// Three polls without a change send no signal to the panel.
void quiet(Tour &tour) {
    tour.panel().clearSignals();
    tour.waitUntil([&] { return tour.panel().signalCount() > 0; }, 9500ms);
    const int total = tour.panel().signalCount();
    expect(total == 0, QString::number(total) + u" signals, though nothing changed"_s);
}

/// After a restart of the panel the item appears again.
void restartPanel(Tour &tour) {
    QProcess restart;
    restart.start(qEnvironmentVariable("KORVEL_PANEL"), {u"restart"_s});
    const bool ended = tour.waitUntil([&] { return restart.state() == QProcess::NotRunning; }, 20s);
    expect(ended && restart.exitCode() == 0, u"the panel did not restart"_s);
    expect(tour.panel().waitForItem(5s, tour.tray().processId()), u"the item is not registered again"_s);
    expect(tour.waitForItemOnScreen(), u"the panel shows no icon"_s);
    screenshot(tour, u"panel-restarted"_s);
}

} // namespace

QList<Step> menuSteps() {
    return {{u"a left click opens the menu, Escape closes it"_s,
             [](Tour &tour) { captureMenu(tour, u"menu-left-click"_s); }},
            {u"a right click opens the panel's copy of it"_s,
             [](Tour &tour) { capturePanelMenu(tour, u"menu-of-the-panel"_s); }},
            {u"no signal for three polls without a change"_s, quiet},
            {u"the panel restarts and the item is there again"_s, restartPanel}};
}

} // namespace korvel::sim
