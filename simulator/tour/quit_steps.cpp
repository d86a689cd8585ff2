#include "simulator/tour/steps.h"

#include "simulator/tour/tour.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto ENDED_WITHIN = 8s;

QString quit(Tour &tour) {
    if (!tour.panel().click(tour.say(u"退出 Korvel"_s, u"Quit Korvel"_s)))
        return u"the menu has no entry to quit"_s;
    tour.waitUntil([&] { return tour.notice().has_value(); }, 500ms);
    tour.screenshot(u"quitting"_s);
    auto &tray = tour.tray();
    if (!tour.waitUntil([&] { return tray.state() == QProcess::NotRunning; }, ENDED_WITHIN))
        return u"the tray still runs"_s;
    if (tray.exitStatus() != QProcess::NormalExit || tray.exitCode() != 0)
        return u"the tray ended with status "_s + QString::number(tray.exitCode());
    if (tour.home().agentPid() != 0)
        return u"the agent still runs"_s;
    return tour.waitUntil([&] { return !tour.panel().isRegistered(); }, 2s) ? QString() : u"the item stays"_s;
}

} // namespace

QList<Step> quitSteps() { return {{u"quit from the menu ends the tray and the agent"_s, quit}}; }

} // namespace korvel::sim
