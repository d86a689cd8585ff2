#include "simulator/tour/steps.h"

#include "simulator/tour/tour.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto ENDED_WITHIN = 8s;
constexpr auto GONE_WITHIN = 2s;

QString quit(Tour &tour) {
    if (!tour.panel().click(tour.say(u"退出 Korvel"_s, u"Quit Korvel"_s)))
        return u"the menu has no entry to quit"_s;
    auto &tray = tour.tray();
    if (!tour.waitUntil([&] { return tray.state() == QProcess::NotRunning; }, ENDED_WITHIN))
        return u"the tray still runs"_s;
    if (tray.exitStatus() != QProcess::NormalExit || tray.exitCode() != 0)
        return u"the tray ended with status "_s + QString::number(tray.exitCode());
    if (tour.home().agentPid() != 0)
        return u"the agent still runs"_s;
    if (!tour.waitUntil([&] { return !tour.panel().isRegistered(); }, GONE_WITHIN))
        return u"the item stays"_s;
    tour.waitForRest({}); // the panel closes the gap
    return tour.screenshot(u"quit"_s) ? QString() : u"no screenshot"_s;
}

} // namespace

QList<Step> quitSteps() { return {{u"quit from the menu ends the tray and the agent"_s, quit}}; }

} // namespace korvel::sim
