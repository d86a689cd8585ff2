#include "simulator/tour/steps.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/menu_look.h"
#include "simulator/tour/texts.h"
#include "simulator/tour/window_checks.h"

#include <QJsonObject>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto NOTICE_STAYS = 5s;

QString showEntry(const Tour &tour) { return tour.say(u"显示配对码…"_s, u"Show Pairing Code…"_s); }

// The status line once more in every language; an agent that has not been paired is not connected.
QString expectLine(Tour &tour, const QString &chinese, const QString &english) {
    const QString line = u"○ "_s + tour.say(chinese, english) + u" · "_s + tourAccount();
    return tour.waitForLine(line, NEXT_POLL) ? QString() : u"the line reads "_s + tour.statusLine();
}

QString expectCode(Tour &tour, const QString &code, const QStringList &more, const QString &name) {
    if (code.isEmpty())
        return u"the agent has no code"_s;
    const QStringList texts{
        tour.say(u"配对这台 Mac"_s, u"Pair This Mac"_s),
        tour.say(u"请在手机上输入这个配对码"_s, u"Enter this code on your phone"_s),
        tour.say(u"手机上的 Korvel 将自动弹出输入框"_s, u"Korvel on your phone will prompt you for it."_s),
        tour.say(u"刷新"_s, u"Refresh"_s),
        tour.say(u"关闭"_s, u"Close"_s),
        spelled(code)};
    return firstWrong({[&] { return expectTexts(tour, texts + more, name); },
                       [&] {
                           return expectLine(tour, u"请在手机上输入配对码 "_s + code,
                                             u"Enter code "_s + code + u" on your phone"_s);
                       },
                       [&] { return expectEntry(tour, showEntry(tour), true); }});
}

QString waitForPhone(Tour &tour) {
    tour.home().changeScenario({{u"offline"_s, true}});
    if (!tour.home().encryption().setState(u"waiting"_s))
        return u"the Mac cannot wait for a phone"_s;
    const QStringList texts{
        tour.say(u"配对这台 Mac"_s, u"Pair This Mac"_s),
        tour.say(u"请先在手机上登录 Korvel"_s, u"Sign in to Korvel on your phone first."_s),
        tour.say(u"登录后，配对码将显示在这里"_s, u"The pairing code will appear here after you sign in."_s)};
    return firstWrong({[&] { return expectWindow(tour, texts, u"pairing-waits"_s); },
                       [&] {
                           return expectLine(tour, u"请先在手机上登录 Korvel，再配对这台 Mac"_s,
                                             u"Sign in to Korvel on your phone, then pair this Mac"_s);
                       },
                       [&] { return expectEntry(tour, showEntry(tour), false); }});
}

QString showTheCode(Tour &tour) {
    if (!tour.home().encryption().phoneSignIn())
        return u"the phone cannot sign in"_s;
    return firstWrong({[&] { return expectCode(tour, tour.home().encryption().pairCode(), {}, u"pairing-code"_s); },
                       [&] { return lookAtMenu(tour, u"pairing-menu"_s); }});
}

QString typeWrongCode(Tour &tour) {
    const QString before = tour.home().encryption().pairCode();
    tour.home().encryption().type(otherCode(before));
    const QString now = tour.home().encryption().pairCode();
    if (now == before)
        return u"the code is still the old one"_s;
    return expectCode(tour, now, {tour.say(u"配对码错误，已刷新"_s, u"Incorrect code. The code has been refreshed."_s)},
                      u"pairing-wrong-code"_s);
}

// Closed and opened again from the menu, then a new code is asked for, by the keyboard alone.
QString refresh(Tour &tour) {
    pressKey(u"Return"_s);
    if (QString wrong = expectNoWindow(tour); !wrong.isEmpty())
        return u"Return does not close it: "_s + wrong;
    // Not at once: shown again within the 0.4 s in which Qt still doubts that its focus went, a window counts as
    // inactive.
    const int polls = requestsTo(tour, u"/health"_s);
    tour.waitUntil([&] { return requestsTo(tour, u"/health"_s) > polls + 1; }, 2 * NEXT_POLL);
    if (!tour.panel().click(showEntry(tour)))
        return u"the menu cannot open it again"_s;
    const QString before = tour.home().encryption().pairCode();
    if (!tour.waitForText(spelled(before), NEXT_POLL))
        return u"the window did not open again"_s;
    tour.waitUntil([&] { return tour.window() && tour.window()->active; }, NEXT_POLL);
    pressKey(u"shift+Tab"_s);
    pressKey(u"space"_s);
    if (!tour.waitUntil([&] { return tour.home().encryption().pairCode() != before; }, NEXT_POLL))
        return u"no new code came"_s;
    const QString now = tour.home().encryption().pairCode();
    if (QString wrong = expectCode(tour, now, {}, u"pairing-refreshed"_s); !wrong.isEmpty())
        return wrong;
    return requestsTo(tour, u"/e2ee/pair/new"_s) == 1 ? QString() : u"it was not asked for once"_s;
}

QString typeRightCode(Tour &tour) { return pairNow(tour, u"paired"_s); }

// The agent reaches its server now; in the menu is what only a paired Mac has.
QString connectAgain(Tour &tour) {
    tour.home().changeScenario({{u"offline"_s, false}});
    if (!tour.waitForLine(connectedLine(tour), NEXT_POLL))
        return u"the line reads "_s + tour.statusLine();
    return expectEntry(tour, showEntry(tour), false);
}

} // namespace

QString pairNow(Tour &tour, const QString &name) {
    if (!tour.home().encryption().typeRight())
        return u"the Mac shows no code"_s;
    const QString success = tour.say(u"已加密，开始同步"_s, u"Encrypted. Syncing now."_s);
    const auto celebrates = [&] {
        const auto window = tour.window();
        return window && window->find(success) && window->find(u"🔒"_s) &&
               window->find(tour.say(u"配对成功"_s, u"Paired"_s));
    };
    if (!tour.waitUntil(celebrates, 2 * NEXT_POLL))
        return u"the window does not say that it is paired"_s;
    tour.waitForRest(tour.windowArea());
    if (!tour.screenshot(name))
        return u"no screenshot"_s;
    return firstWrong({[&] { return expectNotice(tour, u"🔒 "_s + success); }, [&] { return expectNoWindow(tour); },
                       [&] {
                           const auto gone = [&] { return !tour.notice(); };
                           return tour.waitUntil(gone, NOTICE_STAYS) ? QString() : u"the notice stays"_s;
                       }});
}

QList<Step> pairingSteps() {
    return {{u"a Mac that waits for a phone opens the pairing window"_s, waitForPhone},
            {u"the phone signs in and the window shows the code"_s, showTheCode},
            {u"a wrong code gives a new one and says so"_s, typeWrongCode},
            {u"closed, opened from the menu and refreshed by keyboard"_s, refresh},
            {u"the right code pairs and the window closes itself"_s, typeRightCode},
            {u"the paired Mac connects"_s, connectAgain}};
}

} // namespace korvel::sim
