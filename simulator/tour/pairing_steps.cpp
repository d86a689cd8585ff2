#include "simulator/desktop/screen.h"
#include "simulator/tour/controls.h"
#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

QString showEntry() { return L(u"显示配对码…", u"Show Pairing Code…"); }

/// Expects the status line of an agent that is not paired, and so not connected.
void expectPairingLine(Tour &tour, const QString &text) { expectLine(tour, u"○ %1 · ann"_s.arg(text)); }

void expectCode(Tour &tour, const QString &code, const QStringList &more, const QString &name) {
    expect(!code.isEmpty(), u"the agent has no code"_s);
    const QStringList texts{pairTitle(),
                            L(u"请在手机上输入这个配对码", u"Enter this code on your phone"),
                            L(u"手机上的 Korvel 将自动弹出输入框", u"Korvel on your phone will prompt you for it."),
                            L(u"刷新", u"Refresh"),
                            L(u"关闭", u"Close"),
                            spelled(code)};
    expectTexts(tour, texts + more, name);
    expectPairingLine(tour, L(u"请在手机上输入配对码 %1", u"Enter code %1 on your phone").arg(code));
    expectEntry(tour, showEntry(), true);
}

void waitForPhone(Tour &tour) {
    change(tour, {{u"offline"_s, true}});
    expect(tour.home().encryption().setState(u"waiting"_s), u"the Mac cannot wait for a phone"_s);
    expectWindow(tour,
                 {pairTitle(), L(u"请先在手机上登录 Korvel", u"Sign in to Korvel on your phone first."),
                  L(u"登录后，配对码将显示在这里", u"The pairing code will appear here after you sign in.")},
                 u"pairing-waits"_s);
    expectPairingLine(
        tour, L(u"请先在手机上登录 Korvel，再配对这台 Mac", u"Sign in to Korvel on your phone, then pair this Mac"));
    expectEntry(tour, showEntry(), false);
}

void showTheCode(Tour &tour) {
    expect(tour.home().encryption().phoneSignIn(), u"the phone cannot sign in"_s);
    expectCode(tour, tour.home().encryption().pairCode(), {}, u"pairing-code"_s);
    captureMenu(tour, u"pairing-menu"_s);
}

void typeWrongCode(Tour &tour) {
    const QString before = tour.home().encryption().pairCode();
    tour.home().encryption().type(otherCode(before));
    const QString now = tour.home().encryption().pairCode();
    expect(now != before, u"the code is still the old one"_s);
    expectCode(tour, now, {L(u"配对码错误，已刷新", u"Incorrect code. The code has been refreshed.")},
               u"pairing-wrong-code"_s);
}

/// Closes the window, opens it again from the menu, and requests a new code, all by keyboard.
void refresh(Tour &tour) {
    pressKey(u"Return"_s);
    expectNoWindow(tour);
    // Not at once: for 0.4 s after a window has lost the focus, Qt regards it as inactive if it shows again.
    const int polls = requestsTo(tour, u"/health"_s);
    tour.waitUntil([&] { return requestsTo(tour, u"/health"_s) > polls + 1; }, 2 * NEXT_POLL);
    choose(tour, showEntry());
    const QString before = tour.home().encryption().pairCode();
    expectCode(tour, before, {}, u"pairing-opened-again"_s);
    pressKey(u"shift+Tab"_s);
    pressKey(u"space"_s);
    expect(tour.waitUntil([&] { return tour.home().encryption().pairCode() != before; }, NEXT_POLL),
           u"no new code came"_s);
    expectCode(tour, tour.home().encryption().pairCode(), {}, u"pairing-refreshed"_s);
    expectRequests(tour, u"/e2ee/pair/new"_s, 1);
}

void typeRightCode(Tour &tour) { pairNow(tour, u"paired"_s); }

/// The agent reaches its server. The menu has the entries of a paired Mac.
void connectAgain(Tour &tour) {
    change(tour, {{u"offline"_s, false}});
    expectLine(tour, connectedLine());
    expectEntry(tour, showEntry(), false);
}

} // namespace

void pairNow(Tour &tour, const QString &name) {
    expect(tour.home().encryption().typeRight(), u"the Mac shows no code"_s);
    const QString success = L(u"已加密，开始同步", u"Encrypted. Syncing now.");
    const auto celebrates = [&] {
        const auto window = tour.window();
        return window && window->find(success) && window->find(u"🔒"_s) && window->find(L(u"配对成功", u"Paired"));
    };
    expect(tour.waitUntil(celebrates, 2 * NEXT_POLL), u"the window does not say that it is paired"_s);
    tour.waitForRest(tour.windowArea());
    expect(tour.screenshot(name), u"no screenshot"_s);
    expectNotice(tour, u"🔒 "_s + success);
    expectNoWindow(tour);
    expectNoNotice(tour, 5s);
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
