#include "simulator/desktop/screen.h"
#include "simulator/tour/controls.h"
#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int RESPONSE_TAKES_MS = 2500;

// Texts of the window.
QString title() { return L(u"登录 Korvel", u"Sign In to Korvel"); }
QString account() { return L(u"账号", u"Account"); }
QString phone() { return L(u"手机号", u"Phone number"); }
QString code() { return L(u"验证码", u"Code"); }
QString password() { return L(u"密码", u"Password"); }
QString signIn() { return L(u"登录", u"Sign In"); }
QString getCode() { return L(u"获取验证码", u"Get Code"); }
QString byCode() { return L(u"验证码登录", u"Code"); }
QString signUp() { return L(u"注册账号", u"Sign up"); }
QString forgot() { return L(u"忘记密码？", u"Forgot password?"); }
QString back() { return L(u"返回登录", u"Back to sign in"); }
QString signOutEntry() { return L(u"退出账号…", u"Sign Out…"); }

void expectSignedOut(Tour &tour) {
    expectLine(tour, L(u"未登录", u"Not signed in"));
    expectEntry(tour, signInEntry(), true);
    expectEntry(tour, signOutEntry(), false);
}

/// Nobody is signed in, and the next account has to be paired.
void signedOut(Tour &tour) {
    change(tour, {{u"offline"_s, true}, {u"e2ee"_s, QJsonObject{{u"start"_s, u"pending"_s}}}});
    expect(tour.home().startAccountServer() && tour.home().signOut(), u"the simulated home could not be prepared"_s);
    expectSignedOut(tour);
    captureMenu(tour, u"menu-signed-out"_s);
}

void openWindow(Tour &tour) {
    choose(tour, signInEntry());
    expectWindow(tour,
                 {title(), byCode(), L(u"密码登录", u"Password"), account(), password(), signIn(), signUp(), forgot()},
                 u"sign-in-password"_s);
    expectFocus(tour, role::FIELD, account());
}

/// The agent's error message appears below the fields, which do not move.
void typeWrongPassword(Tour &tour) {
    const QRect before = tour.windowArea();
    fillIn(tour, role::FIELD, account(), SERVER_ACCOUNT);
    fillIn(tour, role::PASSWORD, password(), u"open sesam"_s);
    clickControl(tour, role::BUTTON, signIn());
    expectTexts(tour, {L(u"账号或密码不正确", u"Incorrect account or password.")}, u"sign-in-wrong-password"_s);
    expectFocus(tour, role::PASSWORD, password());
    expect(tour.windowArea() == before, u"the window jumped"_s);
}

void seeSignUp(Tour &tour) {
    const QString terms = L(u"《用户协议》", u"Terms of Service"), consent = L(u"我已阅读并同意", u"I agree to the");
    const QStringList texts{L(u"注册 Korvel", u"Sign Up for Korvel"),
                            phone(),
                            code(),
                            password(),
                            getCode(),
                            consent,
                            terms,
                            L(u"和", u"and"),
                            L(u"《隐私政策》", u"Privacy Policy"),
                            L(u"注册", u"Sign Up"),
                            back()};
    clickControl(tour, role::BUTTON, signUp());
    expectTexts(tour, texts, u"sign-up"_s);
    expectFocus(tour, role::FIELD, phone());
    clickControl(tour, role::CHECK_BOX, consent);
    clickControl(tour, role::BUTTON, terms);
    expect(tour.waitUntil([&] { return tour.home().opened().size() == 1; }, NEXT_POLL), u"the terms do not open"_s);
    expectTexts(tour, texts, u"sign-up-agreed"_s);
    clickControl(tour, role::BUTTON, back());
}

void seeReset(Tour &tour) {
    clickControl(tour, role::BUTTON, forgot());
    expectTexts(tour,
                {L(u"找回密码", u"Reset Password"), phone(), code(), getCode(), L(u"新密码", u"New password"), signIn(),
                 back()},
                u"reset-password"_s);
    clickControl(tour, role::BUTTON, back());
}

/// The seconds in the title of the button that counts down; 0 without a countdown.
int secondsLeft(Tour &tour) {
    const QString before = L(u"", u"Resend in "), after = L(u" 秒后重新获取", u"s");
    for (const AccessibleElement &each : tour.window().value_or(AccessibleWindow()).elements) {
        const bool counts = each.role == role::BUTTON && each.name.startsWith(before) && each.name.endsWith(after);
        const int seconds = counts ? each.name.mid(before.size()).chopped(after.size()).toInt() : 0;
        if (seconds > 0)
            return seconds;
    }
    return 0;
}

void requestCode(Tour &tour) {
    clickControl(tour, role::CHOICE, byCode());
    expectTexts(tour, {title(), phone(), code(), getCode(), signIn()}, u"sign-in-code"_s);
    fillIn(tour, role::FIELD, phone(), SERVER_PHONE);
    clickControl(tour, role::BUTTON, getCode());
    expectTexts(tour, {L(u"验证码已发送", u"Code sent.")}, u"sign-in-code-sent"_s);
    expectFocus(tour, role::FIELD, code());
    const int first = secondsLeft(tour);
    expect(first != 0 && tour.waitUntil([&] { return secondsLeft(tour) == first - 1; }, 3s),
           u"the button does not count down from %1"_s.arg(first));
}

/// The agent responds late, and the window shows its progress.
void typeTheCode(Tour &tour) {
    const QJsonObject late{{u"login-code"_s, QJsonObject{{u"delayMs"_s, RESPONSE_TAKES_MS}}}};
    change(tour, {{u"login"_s, late}});
    fillIn(tour, role::FIELD, code(), tour.home().accounts().lastCode(SERVER_PHONE));
    clickControl(tour, role::BUTTON, signIn());
    expectEnabled(tour, role::BUTTON, signIn(), false);
    expect(tour.screenshot(u"sign-in-busy"_s), u"no screenshot"_s);
    expectNotice(tour, signedInNotice());
}

void pairAfterSignIn(Tour &tour) {
    expectTexts(tour, {pairTitle(), spelled(tour.home().encryption().pairCode())}, u"signed-in-pairing"_s);
    pairNow(tour, u"signed-in-paired"_s);
    change(tour, {{u"offline"_s, false}});
    expectLine(tour, serverConnectedLine());
}

void openSignOut(Tour &tour, const QString &name) {
    choose(tour, signOutEntry());
    expectWindow(tour,
                 {L(u"退出账号?", u"Sign Out?"),
                  L(u"退出后，手机将无法看到这台电脑", u"Your phone won't see this Mac after you sign out."),
                  L(u"退出账号", u"Sign Out"), L(u"取消", u"Cancel")},
                 name);
}

/// Cancels, then signs out. The account server, the agent and the configuration reflect it.
void signOut(Tour &tour) {
    auto &home = tour.home();
    openSignOut(tour, u"sign-out"_s);
    pressKey(u"Escape"_s);
    expectNoWindow(tour);
    openSignOut(tour, u"sign-out-again"_s);
    expect(home.account() == SERVER_ACCOUNT, u"Escape signs out"_s);
    expectRequests(tour, u"/e2ee/logout"_s, 0);
    clickControl(tour, role::BUTTON, L(u"退出账号", u"Sign Out"));
    expectNotice(tour, L(u"⏻ 已退出账号", u"⏻ Signed out"));
    expectSignedOut(tour);
    expect(home.accounts().liveCredentials().isEmpty(), u"the credential is still good"_s);
    expectRequests(tour, u"/e2ee/logout"_s, 1);
    expect(home.account().isEmpty() && home.agentPid() == 0, u"the Mac is still signed in, or its agent runs"_s);
    screenshot(tour, u"signed-out"_s);
}

/// Needs the pointer only to open the menu. The Mac already has its keys.
void signInByKeyboard(Tour &tour) {
    change(tour, {{u"e2ee"_s, QJsonObject{{u"start"_s, u"active"_s}}}});
    chooseByKeyboard(tour, signInEntry(), u"menu-by-keyboard"_s);
    expectWindow(tour, {title()}, u"sign-in-by-keyboard"_s);
    expectFocus(tour, role::FIELD, account());
    typeText(SERVER_ACCOUNT);
    pressKey(u"Tab"_s);
    expectFocus(tour, role::PASSWORD, password());
    typeText(SERVER_PASSWORD);
    pressKey(u"Return"_s);
    expectNotice(tour, signedInNotice());
    expectLine(tour, serverConnectedLine(), 2 * NEXT_POLL);
}

} // namespace

QList<Step> signInSteps() {
    return {{u"nobody is signed in and the menu says so"_s, signedOut},
            {u"the menu opens the sign-in window"_s, openWindow},
            {u"a wrong password is reported without a jump"_s, typeWrongPassword},
            {u"the page to sign up, and its terms"_s, seeSignUp},
            {u"the page to reset the password"_s, seeReset},
            {u"a code is requested and the button counts down"_s, requestCode},
            {u"the code signs in"_s, typeTheCode},
            {u"the Mac is paired with the phone"_s, pairAfterSignIn},
            {u"signed out from the menu, once confirmed"_s, signOut},
            {u"opened with a click, all else is done by keyboard: signed in"_s, signInByKeyboard}};
}

} // namespace korvel::sim
