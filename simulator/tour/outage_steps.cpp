#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

#include <csignal>
#include <cstdio>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

// After loading the job, the tray takes silence for "starting" for this time; an outage shows only later.
constexpr auto STARTING_WINDOW = 25s;
constexpr auto POLL_INTERVAL = 3s;
constexpr auto RESTART_DELAY = 8000ms;

// From a failed poll to the panel: the refused connection, a run of launchctl, the bus.
constexpr auto REPORT_TIMEOUT = 200ms;
// For the start of launchctl while a small machine draws a desktop, and for the checks every 20 ms.
constexpr auto SLACK = 500ms;

void die(Tour &tour) {
    tour.waitUntil([&] { return tour.time() > STARTING_WINDOW + 1s; }, STARTING_WINDOW + 1s);
    change(tour, {{u"launchd"_s, QJsonObject{{u"throttleMs"_s, qint64(RESTART_DELAY.count())}}},
                  {u"agent"_s, QJsonObject{{u"startDelayMs"_s, 0}}}});
    // Ends the agent right after a response: the worst case for the time until the tray notices.
    const auto polled = tour.home().requests().size();
    expect(tour.waitUntil([&] { return tour.home().requests().size() > polled; }, POLL_INTERVAL + SLACK),
           u"the agent is not polled"_s);
    const auto killed = tour.time();
    expect(tour.home().killAgent(SIGKILL), u"no agent runs"_s);
    expectLine(tour, L(u"○ Korvel 未响应，正在重试…", u"○ Korvel isn't responding. Retrying…"),
               POLL_INTERVAL + REPORT_TIMEOUT + SLACK);
    std::printf("  the panel knew %.2f s after the agent was killed\n",
                std::chrono::duration<double>(tour.time() - killed).count());
    screenshot(tour, u"agent-dead"_s);
}

void comeBack(Tour &tour) { expectLine(tour, connectedLine(), RESTART_DELAY + POLL_INTERVAL + 2s); }

} // namespace

QList<Step> outageSteps() {
    return {{u"the agent is killed and the line says so"_s, die}, {u"it is restarted and connected again"_s, comeBack}};
}

} // namespace korvel::sim
