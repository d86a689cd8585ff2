#include "simulator/tour/steps.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/window_checks.h"
#include "simulator/tour/window_controls.h"

#include <QJsonObject>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

QString menuEntry(const Tour &tour) { return tour.say(u"⚠ 安全提醒…"_s, u"⚠ Security Alert…"_s); }

QString plainAlarm(Tour &tour) {
    const QString text = tour.say(u"有人在另一台电脑上尝试登录你的账号，并三次输入了错误的配对码。"_s,
                                  u"Someone tried to sign in to your account on another computer and entered a wrong "
                                  u"pairing code three times."_s);
    tour.home().encryption().raiseAlarm(text);
    const QStringList texts{tour.say(u"安全提醒"_s, u"Security Alert"_s), text, tour.say(u"好"_s, u"OK"_s)};
    QString wrong = firstWrong({[&] { return expectWindow(tour, texts, u"alarm"_s); },
                                [&] { return expectEntry(tour, menuEntry(tour), true); }});
    if (!wrong.isEmpty())
        return wrong;
    readWindow(tour);
    pressKey(u"Return"_s);
    wrong =
        firstWrong({[&] { return expectNoWindow(tour); }, [&] { return expectEntry(tour, menuEntry(tour), false); }});
    if (!wrong.isEmpty())
        return wrong;
    return requestsTo(tour, u"/e2ee/alarm/dismiss"_s) == 1 ? QString() : u"it was not dismissed once"_s;
}

QString reset(Tour &tour) {
    tour.home().changeScenario({{u"offline"_s, true}});
    tour.home().encryption().raiseResetAlarm();
    const QStringList texts{
        tour.say(u"加密已重置"_s, u"Encryption Was Reset"_s),
        tour.say(u"如果是你本人的操作，请点击「是我，重新加入」，然后在手机上输入这台 Mac "
                 u"的配对码。\n如果不是，请勿批准任何新设备，并立即修改密码。"_s,
                 u"If you did this, click It Was Me, Rejoin, then enter this Mac's pairing code on your phone.\nIf "
                 u"not, don't approve any new device, and change your password immediately."_s),
        tour.say(u"是我，重新加入"_s, u"It Was Me, Rejoin"_s), tour.say(u"不是我"_s, u"It Wasn't Me"_s)};
    const QString wrong = firstWrong({[&] { return expectWindow(tour, texts, u"reset"_s); },
                                      [&] { return clickControl(tour, role::BUTTON, texts.at(2)); }});
    if (!wrong.isEmpty())
        return wrong;
    if (!tour.waitUntil([&] { return !tour.home().encryption().pairCode().isEmpty(); }, NEXT_POLL))
        return u"the Mac does not rejoin"_s;
    const QStringList pairing{tour.say(u"配对这台 Mac"_s, u"Pair This Mac"_s),
                              spelled(tour.home().encryption().pairCode())};
    if (QString wrong = expectWindow(tour, pairing, u"rejoining"_s); !wrong.isEmpty())
        return wrong;
    return requestsTo(tour, u"/e2ee/reset/accept"_s) == 1 ? QString() : u"it was not accepted once"_s;
}

QString pairAgain(Tour &tour) {
    const QString wrong = pairNow(tour, u"paired-again"_s);
    tour.home().changeScenario({{u"offline"_s, false}});
    return wrong.isEmpty() ? expectEntry(tour, menuEntry(tour), false) : wrong;
}

} // namespace

QList<Step> alarmSteps() {
    return {{u"an alarm shows and OK dismisses it"_s, plainAlarm},
            {u"after a reset the Mac rejoins with a new code"_s, reset},
            {u"it is paired again"_s, pairAgain}};
}

} // namespace korvel::sim
