#include "simulator/tour/steps.h"

#include "simulator/tour/texts.h"
#include "simulator/tour/tour.h"

#include <QJsonObject>

#include <memory>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int AGENT_STARTS_AFTER_MS = 2500; // long enough to be seen as starting
constexpr auto AGENT_STARTS_AFTER = std::chrono::milliseconds(AGENT_STARTS_AFTER_MS);
constexpr auto AGENT_CONNECTS_AFTER = 300ms;
constexpr auto POLL_EVERY = 3s;
constexpr auto SLACK = 1s; // for starting programs on a busy machine

using Icons = QList<QImage>;

// Leaves in `icons` what the item shows while nothing answers yet.
QString start(Tour &tour, Icons &icons) {
    auto &home = tour.home();
    const bool made = home.setScenario({{u"agent"_s, QJsonObject{{u"startDelayMs"_s, AGENT_STARTS_AFTER_MS}}},
                                        {u"health"_s, QJsonObject{{u"sessions"_s, 1}}},
                                        {u"e2ee"_s, QJsonObject{{u"lang"_s, tour.say(u"zh"_s, u"en"_s)}}}}) &&
                      home.signIn(tourAccount()) && home.installJobFile();
    if (!made)
        return u"the simulated home could not be prepared"_s;
    if (QString wrong = tour.startTray(); !wrong.isEmpty())
        return wrong;
    if (!tour.waitForLine(startingLine(tour), AGENT_STARTS_AFTER))
        return u"the line reads "_s + tour.statusLine();
    const auto item = tour.panel().item();
    icons = item ? item->icons : Icons();
    if (icons.isEmpty())
        return u"the item offers no icon"_s;
    if (item->toolTipTitle != u"Korvel"_s)
        return u"the tooltip reads "_s + item->toolTipTitle;
    if (!tour.waitForItemOnScreen())
        return u"the panel shows no icon"_s;
    return tour.screenshot(u"starting"_s) ? QString() : u"no screenshot"_s;
}

QString connect(Tour &tour, const Icons &before) {
    if (!tour.waitForLine(connectedLine(tour), AGENT_STARTS_AFTER + AGENT_CONNECTS_AFTER + POLL_EVERY + SLACK))
        return u"the line reads "_s + tour.statusLine();
    const auto differs = [&] {
        const auto item = tour.panel().item();
        return item && !item->icons.isEmpty() && item->icons != before;
    };
    return tour.waitUntil(differs, SLACK) ? QString() : u"the icon is still that of the start"_s;
}

// The start-up report comes with the first good answer.
QString notice(Tour &tour) {
    const QString expected = connectedLine(tour) + tour.say(u" · 双击 Korvel 可暂停或恢复同步"_s,
                                                            u" · Double-click Korvel to pause or resume sync"_s);
    if (!tour.waitUntil([&] { return tour.notice() == expected; }, SLACK))
        return u"the notice reads "_s + tour.notice().value_or(u"nothing"_s);
    if (!tour.screenshot(u"connected-notice"_s))
        return u"no screenshot"_s;
    return tour.waitUntil([&] { return !tour.notice(); }, 2600ms + SLACK) ? QString() : u"the notice stays"_s;
}

} // namespace

QList<Step> launchSteps() {
    const auto icons = std::make_shared<Icons>();
    return {{u"the item appears and the agent is starting"_s, [=](Tour &tour) { return start(tour, *icons); }},
            {u"connected, with another icon"_s, [=](Tour &tour) { return connect(tour, *icons); }},
            {u"the start-up notice shows and goes"_s, notice}};
}

} // namespace korvel::sim
