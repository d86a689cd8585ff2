#include "simulator/desktop/screen.h"
#include "simulator/tour/controls.h"
#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

QString menuEntry() { return L(u"⚠ 安全提醒…", u"⚠ Security Alert…"); }

void plainAlarm(Tour &tour) {
    const QString text = L(u"有人在另一台电脑上尝试登录你的账号，并三次输入了错误的配对码。",
                           u"Someone tried to sign in to your account on another computer and entered a wrong pairing "
                           u"code three times.");
    tour.home().encryption().raiseAlarm(text);
    expectWindow(tour, {L(u"安全提醒", u"Security Alert"), text, L(u"好", u"OK")}, u"alarm"_s);
    expectEntry(tour, menuEntry(), true);
    readWindow(tour);
    pressKey(u"Return"_s);
    expectNoWindow(tour);
    expectEntry(tour, menuEntry(), false);
    expectRequests(tour, u"/e2ee/alarm/dismiss"_s, 1);
}

void reset(Tour &tour) {
    change(tour, {{u"offline"_s, true}});
    tour.home().encryption().raiseResetAlarm();
    const QStringList texts{
        L(u"加密已重置", u"Encryption Was Reset"),
        L(u"如果是你本人的操作，请点击「是我，重新加入」，然后在手机上输入这台 Mac "
          u"的配对码。\n如果不是，请勿批准任何新设备，并立即修改密码。",
          u"If you did this, click It Was Me, Rejoin, then enter this Mac's pairing code on your phone.\nIf not, don't "
          u"approve any new device, and change your password immediately."),
        L(u"是我，重新加入", u"It Was Me, Rejoin"), L(u"不是我", u"It Wasn't Me")};
    expectWindow(tour, texts, u"reset"_s);
    clickControl(tour, role::BUTTON, texts.at(2));
    expect(tour.waitUntil([&] { return !tour.home().encryption().pairCode().isEmpty(); }, NEXT_POLL),
           u"the Mac does not rejoin"_s);
    expectWindow(tour, {pairTitle(), spelled(tour.home().encryption().pairCode())}, u"rejoining"_s);
    expectRequests(tour, u"/e2ee/reset/accept"_s, 1);
}

void pairAgain(Tour &tour) {
    pairNow(tour, u"paired-again"_s);
    change(tour, {{u"offline"_s, false}});
    expectEntry(tour, menuEntry(), false);
}

} // namespace

QList<Step> alarmSteps() {
    return {{u"an alarm shows and OK dismisses it"_s, plainAlarm},
            {u"after a reset the Mac rejoins with a new code"_s, reset},
            {u"it is paired again"_s, pairAgain}};
}

} // namespace korvel::sim
