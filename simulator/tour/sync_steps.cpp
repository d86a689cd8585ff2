#include "simulator/tour/steps.h"

#include "simulator/tour/texts.h"
#include "simulator/tour/tour.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto NOTICE_WITHIN = 2s;
constexpr auto NOTICE_STAYS = 4s;

// Stopping the job (6 s at most) or starting it, then the poll that reports it.
constexpr auto TOGGLED_WITHIN = 12s;

QString choose(Tour &tour, const QString &entry, const QString &line, const QString &name) {
    if (!tour.waitUntil([&] { return !tour.notice(); }, NOTICE_STAYS))
        return u"an earlier notice stays"_s;
    if (!tour.panel().open() || !tour.panel().click(entry))
        return u"the menu has no entry "_s + entry;
    if (!tour.waitForLine(line, TOGGLED_WITHIN))
        return u"the line reads "_s + tour.statusLine();
    if (!tour.waitUntil([&] { return tour.notice().has_value(); }, NOTICE_WITHIN))
        return u"there is no notice"_s;
    return tour.screenshot(name) ? QString() : u"no screenshot"_s;
}

QString pause(Tour &tour) {
    QString wrong = choose(tour, tour.say(u"暂停同步"_s, u"Pause Sync"_s), pausedLine(tour), u"paused"_s);
    if (!wrong.isEmpty())
        return wrong;
    return tour.home().agentPid() == 0 ? QString() : u"the agent still runs"_s;
}

QString resume(Tour &tour) {
    return choose(tour, tour.say(u"恢复同步"_s, u"Resume Sync"_s), connectedLine(tour), u"resumed"_s);
}

} // namespace

QList<Step> syncSteps() {
    return {{u"sync is paused from the menu, with a notice"_s, pause},
            {u"sync is resumed from the menu, with a notice"_s, resume}};
}

} // namespace korvel::sim
