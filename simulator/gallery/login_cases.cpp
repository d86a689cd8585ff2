#include "app/model/wording.h"
#include "simulator/gallery/gallery_case.h"
#include "ui/widgets/cn_login_window.h"
#include "ui/widgets/picture.h"

#include <QApplication>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

struct Sample {
    const char *name;
    CnLoginForm form;
    int tabs = 0; ///< Number of presses of Tab.
};

std::shared_ptr<void> show(const Sample &sample) {
    auto panel = std::make_shared<CnLoginPanel>();
    panel->connect([](const LoginInput &) {});
    panel->present(cnLoginView(sample.form), OpenedBy::User);
    panel->focus(firstEmptyField(sample.form));
    finishLayout();
    for (int pressed = 0; pressed < sample.tabs && QApplication::focusWidget(); ++pressed) {
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QCoreApplication::sendEvent(QApplication::focusWidget(), &tab);
    }
    return panel;
}

QString refusal() { return L(u"手机号或密码错误", u"The phone number or the password is wrong."); }

QString longRefusal() {
    return L(u"验证码请求过于频繁，为保护你的账号安全，请在一小时后重试，或改用密码登录；如果忘记了密码，可以通过手机"
             u"号码找回。",
             u"Too many codes were asked for. To protect your account, try again in an hour, or sign in with your "
             u"password; if you forgot it, you can reset it with your phone number.");
}

} // namespace

QList<Case> loginCases() {
    const QString phone = u"13800000000"_s;
    const CnLoginForm registering{
        .page = Page::Register, .countdown = 59, .account = phone, .code = u"482913"_s, .agree = true};
    CnLoginForm refused = registering, busy = registering;
    refused.error = longRefusal();
    busy.busy = true;
    busy.password = u"secret"_s;
    const QList<Sample> samples{
        {"password", {}},
        {"code", {.codeMode = true}},
        {"register", {.page = Page::Register}},
        {"reset", {.page = Page::Reset}},
        {"again", openCnLoginForm(true, phone)},
        {"notice", openCnLoginForm(false, {}, longRefusal())},
        {"code-sent", {.codeMode = true, .countdown = 60, .account = phone, .info = L(u"验证码已发送", u"Code sent.")}},
        {"sending", {.codeMode = true, .sending = true, .account = phone}},
        {"day-long-countdown", {.codeMode = true, .countdown = 86400, .account = phone}},
        {"refused", {.account = phone, .error = refusal()}},
        {"refused-at-length", refused},
        {"refused-beyond-measure", {.account = phone, .error = (refusal() + u'\n').repeated(60)}},
        {"busy", {.busy = true, .account = phone, .password = u"secret"_s}},
        {"busy-registering", busy},
        {"unbroken-texts", {.account = unbrokenName(), .error = unbrokenName()}},
        {"right-to-left", {.account = rightToLeftName(), .error = rightToLeftName()}},
        {"focus-on-code-button", {.codeMode = true}, 2},
        {"focus-on-check-box", {.page = Page::Register}, 4},
        {"focus-on-main-button", {}, 2},
        {"focus-on-link", {}, 3},
        {"focus-on-tab", {}, 5},
    };
    QList<Case> cases;
    for (const Sample &sample : samples)
        cases.append({u"Sign-in window"_s, QLatin1StringView(sample.name), [sample] { return show(sample); }});
    return cases;
}

} // namespace korvel::gallery
