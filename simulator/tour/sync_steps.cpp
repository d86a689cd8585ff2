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

// Chooses a menu entry and expects the status line and one of the notices that may follow.
QString choose(Tour &tour, const QString &entry, const QString &line, const QStringList &notices, const QString &name) {
    if (!tour.waitUntil([&] { return !tour.notice(); }, NOTICE_STAYS))
        return u"an earlier notice stays"_s;
    if (!tour.panel().open() || !tour.panel().click(entry))
        return u"the menu has no entry "_s + entry;
    if (!tour.waitForLine(line, TOGGLED_WITHIN))
        return u"the line reads "_s + tour.statusLine();
    if (!tour.waitUntil([&] { return notices.contains(tour.notice().value_or(QString())); }, NOTICE_WITHIN))
        return u"the notice reads "_s + tour.notice().value_or(u"nothing"_s);
    return tour.screenshot(name) ? QString() : u"no screenshot"_s;
}

QString pause(Tour &tour) {
    const QString notice = tour.say(u"⏻ 已暂停同步，手机将无法看到这台电脑"_s,
                                    u"⏻ Sync paused. Your phone can't see this Mac."_s);
    QString wrong = choose(tour, tour.say(u"暂停同步"_s, u"Pause Sync"_s), pausedLine(tour), {notice}, u"paused"_s);
    if (!wrong.isEmpty())
        return wrong;
    return tour.home().agentPid() == 0 ? QString() : u"the agent still runs"_s;
}

QString resume(Tour &tour) {
    // By then the agent answers or does not, and is connected or not: three notices are right.
    const QStringList notices{connectedLine(tour), tour.say(u"○ 正在连接… · ann"_s, u"○ Connecting… · ann"_s),
                              tour.say(u"● 已恢复同步，正在连接…"_s, u"● Sync resumed. Connecting…"_s)};
    return choose(tour, tour.say(u"恢复同步"_s, u"Resume Sync"_s), connectedLine(tour), notices, u"resumed"_s);
}

} // namespace

QList<Step> syncSteps() {
    return {{u"sync is paused from the menu, with a notice"_s, pause},
            {u"sync is resumed from the menu, with a notice"_s, resume}};
}

} // namespace korvel::sim
