#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

// Stopping the job (at most 6 s) or starting it, then the next poll.
constexpr auto TOGGLE_TIMEOUT = 12s;

/// Chooses a menu entry and expects the status line and one of the notices.
void toggle(Tour &tour, const QString &entry, const QString &line, const QStringList &notices, const QString &name) {
    expectNoNotice(tour, 4s);
    choose(tour, entry);
    expectLine(tour, line, TOGGLE_TIMEOUT);
    expect(tour.waitUntil([&] { return notices.contains(tour.notice().value_or(QString())); }, 2s),
           u"the notice reads "_s + tour.notice().value_or(u"nothing"_s));
    expect(tour.screenshot(name), u"no screenshot"_s);
}

void pause(Tour &tour) {
    const QString notice = L(u"⏻ 已暂停同步，手机将无法看到这台电脑",
                             u"⏻ Sync paused. Your phone can't see this Mac.");
    toggle(tour, L(u"暂停同步", u"Pause Sync"), L(u"⏻ 已暂停同步 · ann", u"⏻ Sync paused · ann"), {notice},
           u"paused"_s);
    expect(tour.home().agentPid() == 0, u"the agent still runs"_s);
}

void resume(Tour &tour) {
    // Depending on the agent's start and connection, three notices are right.
    const QStringList notices{connectedLine(), L(u"○ 正在连接… · ann", u"○ Connecting… · ann"),
                              L(u"● 已恢复同步，正在连接…", u"● Sync resumed. Connecting…")};
    toggle(tour, L(u"恢复同步", u"Resume Sync"), connectedLine(), notices, u"resumed"_s);
}

} // namespace

QList<Step> syncSteps() {
    return {{u"sync is paused from the menu, with a notice"_s, pause},
            {u"sync is resumed from the menu, with a notice"_s, resume}};
}

} // namespace korvel::sim
