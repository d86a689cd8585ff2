#include "simulator/tour/steps.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/menu_look.h"
#include "simulator/tour/texts.h"
#include "simulator/tour/window_checks.h"
#include "simulator/tour/window_controls.h"

#include <QJsonObject>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

// After the click that opens the menu the pointer is not needed any more. The Mac's keys are known by now.
QString signInByKeyboard(Tour &tour) {
    tour.home().changeScenario({{u"e2ee"_s, QJsonObject{{u"start"_s, u"active"_s}}}});
    const QStringList title{tour.say(u"登录 Korvel"_s, u"Sign In to Korvel"_s)};
    const QString account = tour.say(u"账号"_s, u"Account"_s), password = tour.say(u"密码"_s, u"Password"_s);
    QString wrong = firstWrong({[&] { return chooseByKeyboard(tour, signInEntry(tour), u"menu-by-keyboard"_s); },
                                [&] { return expectWindow(tour, title, u"sign-in-by-keyboard"_s); },
                                [&] { return expectFocus(tour, role::FIELD, account); }});
    if (!wrong.isEmpty())
        return wrong;
    typeText(serverAccount());
    pressKey(u"Tab"_s);
    if (wrong = expectFocus(tour, role::PASSWORD, password); !wrong.isEmpty())
        return wrong;
    typeText(serverPassword());
    pressKey(u"Return"_s);
    if (wrong = expectNotice(tour, signedInNotice(tour)); !wrong.isEmpty())
        return wrong;
    return tour.waitForLine(serverConnectedLine(tour), 2 * NEXT_POLL) ? QString()
                                                                      : u"the line reads "_s + tour.statusLine();
}

} // namespace

QList<Step> keyboardSteps() {
    return {{u"opened with a click, all else is done by keyboard: signed in"_s, signInByKeyboard}};
}

} // namespace korvel::sim
