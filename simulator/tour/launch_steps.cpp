#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto AGENT_START_DELAY = 2500ms; // long enough to see the state "starting"
constexpr auto AGENT_CONNECT_DELAY = 300ms;
constexpr auto POLL_INTERVAL = 3s;
constexpr auto SLACK = 1s; // for program starts on a busy machine

QList<QImage> iconsOf(Tour &tour) {
    const auto item = tour.panel().item();
    return item ? item->icons : QList<QImage>();
}

QList<QImage> iconsAtStart;

void start(Tour &tour) {
    auto &home = tour.home();
    const bool made =
        home.setScenario({{u"agent"_s, QJsonObject{{u"startDelayMs"_s, qint64(AGENT_START_DELAY.count())}}},
                          {u"health"_s, QJsonObject{{u"sessions"_s, 1}}},
                          {u"e2ee"_s, QJsonObject{{u"lang"_s, L(u"zh", u"en")}}}}) &&
        home.signIn(u"ann"_s) && home.installJobFile();
    expect(made, u"the simulated home could not be prepared"_s);
    tour.startTray();
    expectLine(tour, L(u"○ 正在启动… · ann", u"○ Starting… · ann"), AGENT_START_DELAY);
    iconsAtStart = iconsOf(tour);
    expect(!iconsAtStart.isEmpty(), u"the item offers no icon"_s);
    expect(tour.panel().item()->toolTipTitle == u"Korvel"_s, u"the tooltip has another title"_s);
    expect(tour.waitForItemOnScreen(), u"the panel shows no icon"_s);
    expect(tour.screenshot(u"starting"_s), u"no screenshot"_s);
}

void connect(Tour &tour) {
    expectLine(tour, connectedLine(), AGENT_START_DELAY + AGENT_CONNECT_DELAY + POLL_INTERVAL + SLACK);
    const auto differs = [&] { return !iconsOf(tour).isEmpty() && iconsOf(tour) != iconsAtStart; };
    expect(tour.waitUntil(differs, SLACK), u"the icon is still that of the start"_s);
}

/// The startup notice appears with the first good response.
void notice(Tour &tour) {
    const QString more = L(u" · 双击 Korvel 可暂停或恢复同步", u" · Double-click Korvel to pause or resume sync");
    expectNotice(tour, connectedLine() + more, POLL_INTERVAL);
    expect(tour.screenshot(u"connected-notice"_s), u"no screenshot"_s);
    expectNoNotice(tour, 2600ms + SLACK);
}

} // namespace

QList<Step> launchSteps() {
    return {{u"the item appears and the agent is starting"_s, start},
            {u"connected, with another icon"_s, connect},
            {u"the start-up notice shows and goes"_s, notice}};
}

} // namespace korvel::sim
