#include "account/cn_login_window.h"
#include "app/wording.h"
#include "simulator/gallery/gallery_case.h"

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

struct Sample {
    const char *name;
    std::function<CnLoginForm()> form; ///< Made when shown: some of its texts have a language.
};

std::shared_ptr<void> show(const CnLoginForm &form) {
    auto panel = std::make_shared<CnLoginPanel>();
    panel->connect([](const LoginInput &) {});
    panel->present(cnLoginView(form), OpenedBy::User);
    panel->focus(firstEmptyField(form));
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
    const QList<Sample> samples{
        {"password", [] { return CnLoginForm{}; }},
        {"code", [] { return CnLoginForm{.codeMode = true}; }},
        {"register", [] { return CnLoginForm{.page = Page::Register}; }},
        {"reset", [] { return CnLoginForm{.page = Page::Reset}; }},
        {"again", [phone] { return openCnLoginForm(true, phone); }},
        {"notice", [] { return openCnLoginForm(false, {}, longRefusal()); }},
        {"code-sent",
         [phone] {
             return CnLoginForm{
                 .codeMode = true, .countdown = 60, .account = phone, .info = L(u"验证码已发送", u"Code sent.")};
         }},
        {"sending", [phone] { return CnLoginForm{.codeMode = true, .sending = true, .account = phone}; }},
        {"day-long-countdown", [phone] { return CnLoginForm{.codeMode = true, .countdown = 86400, .account = phone}; }},
        {"refused", [phone] { return CnLoginForm{.account = phone, .error = refusal()}; }},
        {"refused-at-length",
         [phone] {
             return CnLoginForm{.page = Page::Register,
                                .countdown = 59,
                                .account = phone,
                                .code = u"482913"_s,
                                .agree = true,
                                .error = longRefusal()};
         }},
        {"refused-beyond-measure",
         [phone] { return CnLoginForm{.account = phone, .error = (refusal() + u'\n').repeated(60)}; }},
        {"busy", [phone] { return CnLoginForm{.busy = true, .account = phone, .password = u"secret"_s}; }},
        {"busy-registering",
         [phone] {
             return CnLoginForm{.page = Page::Register,
                                .busy = true,
                                .countdown = 12,
                                .account = phone,
                                .code = u"482913"_s,
                                .password = u"secret"_s,
                                .agree = true};
         }},
        {"unbroken-texts", [] { return CnLoginForm{.account = unbrokenName(), .error = unbrokenName()}; }},
        {"right-to-left", [] { return CnLoginForm{.account = rightToLeftName(), .error = rightToLeftName()}; }},
    };
    QList<Case> cases;
    for (const Sample &sample : samples)
        cases.append({u"Sign-in window"_s, QLatin1StringView(sample.name), [sample] { return show(sample.form()); }});
    return cases;
}

} // namespace korvel::gallery
