#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

void quit(Tour &tour) {
    choose(tour, L(u"退出 Korvel", u"Quit Korvel"));
    auto &tray = tour.tray();
    expect(tour.waitUntil([&] { return tray.state() == QProcess::NotRunning; }, 8s), u"the tray still runs"_s);
    expect(tray.exitStatus() == QProcess::NormalExit && tray.exitCode() == 0,
           u"the tray ended with status "_s + QString::number(tray.exitCode()));
    expect(tour.home().agentPid() == 0, u"the agent still runs"_s);
    expect(tour.waitUntil([&] { return !tour.panel().isRegistered(); }, 2s), u"the item stays"_s);
    screenshot(tour, u"quit"_s); // after the panel has removed the item
}

} // namespace

QList<Step> quitSteps() { return {{u"quit from the menu ends the tray and the agent"_s, quit}}; }

} // namespace korvel::sim
