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

constexpr int ANSWER_TAKES_MS = 2500;

// The texts of the window, which the tray is not asked for.
struct Words {
    QString title, byCode, byPassword, account, phone, code, password, signIn, signUp, forgot, back;
};

Words wordsOf(const Tour &tour) {
    return {.title = tour.say(u"登录 Korvel"_s, u"Sign In to Korvel"_s),
            .byCode = tour.say(u"验证码登录"_s, u"Code"_s),
            .byPassword = tour.say(u"密码登录"_s, u"Password"_s),
            .account = tour.say(u"账号"_s, u"Account"_s),
            .phone = tour.say(u"手机号"_s, u"Phone number"_s),
            .code = tour.say(u"验证码"_s, u"Code"_s),
            .password = tour.say(u"密码"_s, u"Password"_s),
            .signIn = tour.say(u"登录"_s, u"Sign In"_s),
            .signUp = tour.say(u"注册账号"_s, u"Sign up"_s),
            .forgot = tour.say(u"忘记密码？"_s, u"Forgot password?"_s),
            .back = tour.say(u"返回登录"_s, u"Back to sign in"_s)};
}

QString getCode(const Tour &tour) { return tour.say(u"获取验证码"_s, u"Get Code"_s); }

QString signOutEntry(const Tour &tour) { return tour.say(u"退出账号…"_s, u"Sign Out…"_s); }

QString expectSignedOut(Tour &tour) {
    if (!tour.waitForLine(tour.say(u"未登录"_s, u"Not signed in"_s), NEXT_POLL))
        return u"the line reads "_s + tour.statusLine();
    return firstWrong({[&] { return expectEntry(tour, signInEntry(tour), true); },
                       [&] { return expectEntry(tour, signOutEntry(tour), false); }});
}

// A Mac on which nobody is signed in, and which will have to be paired by whoever does.
QString signedOut(Tour &tour) {
    auto &home = tour.home();
    const bool made =
        home.changeScenario({{u"offline"_s, true}, {u"e2ee"_s, QJsonObject{{u"start"_s, u"pending"_s}}}}) &&
        home.startAccountServer() && home.signOut();
    if (!made)
        return u"the simulated home could not be prepared"_s;
    return firstWrong({[&] { return expectSignedOut(tour); }, [&] { return lookAtMenu(tour, u"menu-signed-out"_s); }});
}

QString openWindow(Tour &tour) {
    if (!tour.panel().open() || !tour.panel().click(signInEntry(tour)))
        return u"the menu has no entry "_s + signInEntry(tour);
    const Words w = wordsOf(tour);
    const QStringList texts{w.title, w.byCode, w.byPassword, w.account, w.password, w.signIn, w.signUp, w.forgot};
    return firstWrong({[&] { return expectWindow(tour, texts, u"sign-in-password"_s); },
                       [&] { return expectFocus(tour, role::FIELD, w.account); }});
}

// The agent's sentence comes below fields that stay where they are.
QString typeWrongPassword(Tour &tour) {
    const Words w = wordsOf(tour);
    const QRect before = tour.windowArea();
    const QString refusal = tour.say(u"账号或密码不正确"_s, u"Incorrect account or password."_s);
    QString wrong = firstWrong({[&] { return fillIn(tour, role::FIELD, w.account, serverAccount()); },
                                [&] { return fillIn(tour, role::PASSWORD, w.password, u"open sesam"_s); },
                                [&] { return clickControl(tour, role::BUTTON, w.signIn); },
                                [&] { return expectTexts(tour, {refusal}, u"sign-in-wrong-password"_s); },
                                [&] { return expectFocus(tour, role::PASSWORD, w.password); }});
    if (!wrong.isEmpty())
        return wrong;
    return tour.windowArea() == before ? QString() : u"the window jumped"_s;
}

QString seeSignUp(Tour &tour) {
    const Words w = wordsOf(tour);
    const QString terms = tour.say(u"《用户协议》"_s, u"Terms of Service"_s);
    const QString consent = tour.say(u"我已阅读并同意"_s, u"I agree to the"_s);
    const QStringList texts{tour.say(u"注册 Korvel"_s, u"Sign Up for Korvel"_s),
                            w.phone,
                            w.code,
                            w.password,
                            getCode(tour),
                            consent,
                            terms,
                            tour.say(u"和"_s, u"and"_s),
                            tour.say(u"《隐私政策》"_s, u"Privacy Policy"_s),
                            tour.say(u"注册"_s, u"Sign Up"_s),
                            w.back};
    QString wrong = firstWrong({[&] { return clickControl(tour, role::BUTTON, w.signUp); },
                                [&] { return expectTexts(tour, texts, u"sign-up"_s); },
                                [&] { return expectFocus(tour, role::FIELD, w.phone); },
                                [&] { return clickControl(tour, role::CHECK_BOX, consent); },
                                [&] { return clickControl(tour, role::BUTTON, terms); }});
    if (!wrong.isEmpty())
        return wrong;
    if (!tour.waitUntil([&] { return tour.home().opened().size() == 1; }, NEXT_POLL))
        return u"the terms do not open"_s;
    return firstWrong({[&] { return expectTexts(tour, texts, u"sign-up-agreed"_s); },
                       [&] { return clickControl(tour, role::BUTTON, w.back); }});
}

QString seeReset(Tour &tour) {
    const Words w = wordsOf(tour);
    const QStringList texts{tour.say(u"找回密码"_s, u"Reset Password"_s), w.phone,  w.code, getCode(tour),
                            tour.say(u"新密码"_s, u"New password"_s),     w.signIn, w.back};
    return firstWrong({[&] { return clickControl(tour, role::BUTTON, w.forgot); },
                       [&] { return expectTexts(tour, texts, u"reset-password"_s); },
                       [&] { return clickControl(tour, role::BUTTON, w.back); }});
}

// The seconds in the title of the button that counts down; 0 while it does not.
int secondsLeft(Tour &tour) {
    const auto window = tour.window();
    if (!window)
        return 0;
    const QString before = tour.say(QString(), u"Resend in "_s), after = tour.say(u" 秒后重新获取"_s, u"s"_s);
    for (const AccessibleElement &each : window->elements) {
        const bool counts = each.role == role::BUTTON && each.name.startsWith(before) && each.name.endsWith(after);
        const int seconds = counts ? each.name.mid(before.size()).chopped(after.size()).toInt() : 0;
        if (seconds > 0)
            return seconds;
    }
    return 0;
}

QString askForCode(Tour &tour) {
    const Words w = wordsOf(tour);
    const QStringList texts{w.title, w.phone, w.code, getCode(tour), w.signIn};
    QString wrong = firstWrong({[&] { return clickControl(tour, role::CHOICE, w.byCode); },
                                [&] { return expectTexts(tour, texts, u"sign-in-code"_s); },
                                [&] { return fillIn(tour, role::FIELD, w.phone, serverPhone()); },
                                [&] { return clickControl(tour, role::BUTTON, getCode(tour)); },
                                [&] {
                                    const QString sent = tour.say(u"验证码已发送"_s, u"Code sent."_s);
                                    return expectTexts(tour, {sent}, u"sign-in-code-sent"_s);
                                },
                                [&] { return expectFocus(tour, role::FIELD, w.code); }});
    if (!wrong.isEmpty())
        return wrong;
    const int first = secondsLeft(tour);
    if (first == 0 || !tour.waitUntil([&] { return secondsLeft(tour) == first - 1; }, 3s))
        return u"the button does not count down from %1"_s.arg(first);
    return {};
}

// The agent takes its time, and the window shows that it waits.
QString typeTheCode(Tour &tour) {
    tour.home().changeScenario(
        {{u"login"_s, QJsonObject{{u"login-code"_s, QJsonObject{{u"delayMs"_s, ANSWER_TAKES_MS}}}}}});
    const Words w = wordsOf(tour);
    const QString code = tour.home().accounts().lastCode(serverPhone());
    return firstWrong({[&] { return fillIn(tour, role::FIELD, w.code, code); },
                       [&] { return clickControl(tour, role::BUTTON, w.signIn); },
                       [&] { return expectEnabled(tour, role::BUTTON, w.signIn, false); },
                       [&] { return tour.screenshot(u"sign-in-busy"_s) ? QString() : u"no screenshot"_s; },
                       [&] { return expectNotice(tour, signedInNotice(tour)); }});
}

QString pairAfterSignIn(Tour &tour) {
    const QStringList texts{tour.say(u"配对这台 Mac"_s, u"Pair This Mac"_s),
                            spelled(tour.home().encryption().pairCode())};
    return firstWrong({[&] { return expectTexts(tour, texts, u"signed-in-pairing"_s); },
                       [&] { return pairNow(tour, u"signed-in-paired"_s); },
                       [&] {
                           tour.home().changeScenario({{u"offline"_s, false}});
                           return tour.waitForLine(serverConnectedLine(tour), NEXT_POLL)
                                      ? QString()
                                      : u"the line reads "_s + tour.statusLine();
                       }});
}

QString askToSignOut(Tour &tour, const QString &name) {
    if (!tour.panel().open() || !tour.panel().click(signOutEntry(tour)))
        return u"the menu has no entry "_s + signOutEntry(tour);
    return expectWindow(
        tour,
        {tour.say(u"退出账号?"_s, u"Sign Out?"_s),
         tour.say(u"退出后，手机将无法看到这台电脑"_s, u"Your phone won't see this Mac after you sign out."_s),
         tour.say(u"退出账号"_s, u"Sign Out"_s), tour.say(u"取消"_s, u"Cancel"_s)},
        name);
}

// First not after all, then really: the account server, the agent and the configuration know.
QString signOut(Tour &tour) {
    auto &home = tour.home();
    QString wrong = firstWrong({[&] { return askToSignOut(tour, u"sign-out"_s); },
                                [&] {
                                    pressKey(u"Escape"_s);
                                    return expectNoWindow(tour);
                                },
                                [&] { return askToSignOut(tour, u"sign-out-again"_s); }});
    if (!wrong.isEmpty())
        return wrong;
    if (home.account() != serverAccount() || requestsTo(tour, u"/e2ee/logout"_s) != 0)
        return u"Escape signs out"_s;
    wrong = firstWrong({[&] { return clickControl(tour, role::BUTTON, tour.say(u"退出账号"_s, u"Sign Out"_s)); },
                        [&] { return expectNotice(tour, tour.say(u"⏻ 已退出账号"_s, u"⏻ Signed out"_s)); },
                        [&] { return expectSignedOut(tour); }});
    if (!wrong.isEmpty())
        return wrong;
    if (!home.accounts().liveCredentials().isEmpty() || requestsTo(tour, u"/e2ee/logout"_s) != 1)
        return u"the credential is still good, or the agent was not told once"_s;
    if (!home.account().isEmpty() || home.agentPid() != 0)
        return u"the Mac is still signed in, or its agent runs"_s;
    return tour.screenshot(u"signed-out"_s) ? QString() : u"no screenshot"_s;
}

} // namespace

QList<Step> signInSteps() {
    return {{u"nobody is signed in and the menu says so"_s, signedOut},
            {u"the menu opens the sign-in window"_s, openWindow},
            {u"a wrong password is told without a jump"_s, typeWrongPassword},
            {u"the page to sign up, and its terms"_s, seeSignUp},
            {u"the page to reset the password"_s, seeReset},
            {u"a code is asked for and the button counts down"_s, askForCode},
            {u"the code signs in"_s, typeTheCode},
            {u"the Mac is paired with the phone"_s, pairAfterSignIn},
            {u"signed out from the menu, once confirmed"_s, signOut}};
}

} // namespace korvel::sim
