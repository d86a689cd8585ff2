#include "simulator/tour/steps.h"

#include "simulator/tour/texts.h"
#include "simulator/tour/tour.h"

#include <QJsonObject>

#include <csignal>
#include <cstdio>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

// After having loaded the job the tray takes silence for starting this long, so an outage shows only later.
constexpr auto STARTING_WINDOW = 25s;
constexpr auto POLL_EVERY = 3s;

// What a poll that finds nobody needs before the panel is told: the refused connection, a run of launchctl, the bus.
constexpr auto REPORT_WITHIN = 200ms;
// For starting launchctl while both cores of a small machine draw a desktop, and for looking every 20 ms.
constexpr auto SLACK = 500ms;

constexpr int RESTART_AFTER_MS = 8000;

QString die(Tour &tour) {
    tour.waitUntil([&] { return tour.time() > STARTING_WINDOW + 1s; }, STARTING_WINDOW + 1s);
    tour.home().changeScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, RESTART_AFTER_MS}}},
                                {u"agent"_s, QJsonObject{{u"startDelayMs"_s, 0}}}});
    // Right after an answer, so that the tray learns of it as late as it ever does.
    const auto polled = tour.home().requests().size();
    if (!tour.waitUntil([&] { return tour.home().requests().size() > polled; }, POLL_EVERY + SLACK))
        return u"the agent is not polled"_s;
    const auto killed = tour.time();
    if (!tour.home().killAgent(SIGKILL))
        return u"no agent runs"_s;
    if (!tour.waitForLine(notRespondingLine(tour), POLL_EVERY + REPORT_WITHIN + SLACK))
        return u"the line reads "_s + tour.statusLine();
    std::printf("  the panel knew %.2f s after the agent was killed\n",
                std::chrono::duration<double>(tour.time() - killed).count());
    return tour.screenshot(u"agent-dead"_s) ? QString() : u"no screenshot"_s;
}

QString comeBack(Tour &tour) {
    const auto within = std::chrono::milliseconds(RESTART_AFTER_MS) + POLL_EVERY + 2s;
    return tour.waitForLine(connectedLine(tour), within) ? QString() : u"the line reads "_s + tour.statusLine();
}

} // namespace

QList<Step> outageSteps() {
    return {{u"the agent is killed and the line says so"_s, die}, {u"it is restarted and connected again"_s, comeBack}};
}

} // namespace korvel::sim
