#include "account/cn_login_view.h"

#include "app/model/wording.h"
#include "base/plain_text.h"

namespace korvel {

namespace {

QString titleOf(const CnLoginForm &form) {
    switch (form.page) {
    case Page::Register:
        return L(u"注册 Korvel", u"Sign Up for Korvel");
    case Page::Reset:
        return L(u"找回密码", u"Reset Password");
    case Page::Login:
        break;
    }
    return form.again ? L(u"重新登录 Korvel", u"Sign In to Korvel Again") : L(u"登录 Korvel", u"Sign In to Korvel");
}

QString sendText(int countdown) {
    if (countdown <= 0)
        return L(u"获取验证码", u"Get Code");
    const QString seconds = QString::number(countdown);
    return L(u"", u"Resend in ") + seconds + L(u" 秒后重新获取", u"s");
}

LoginFieldView accountField(const CnLoginForm &form) {
    const bool byPassword = form.page == Page::Login && !form.codeMode;
    return {.visible = true,
            .label = byPassword ? L(u"账号", u"Account") : L(u"手机号", u"Phone number"),
            .placeholder = byPassword ? L(u"手机号或邮箱", u"Phone number or email") : QString(),
            .text = form.account};
}

} // namespace

CnLoginView cnLoginView(const CnLoginForm &form) {
    CnLoginView view;
    view.title = titleOf(form);
    view.notice = form.notice;
    if (form.page == Page::Login)
        view.tabs = {L(u"验证码登录", u"Code"), L(u"密码登录", u"Password")};
    view.tab = form.codeMode ? 0 : 1;
    view.account = accountField(form);
    view.code = {.visible = showsField(form, LoginField::Code),
                 .label = L(u"验证码", u"Code"),
                 .placeholder = L(u"6 位数字", u"6 digits"),
                 .text = form.code};
    view.password = {.visible = showsField(form, LoginField::Password),
                     .label = form.page == Page::Reset ? L(u"新密码", u"New password") : L(u"密码", u"Password"),
                     .text = form.password};
    view.sendText = sendText(form.countdown);
    view.sendEnabled = canSendCode(form);
    view.agreeVisible = showsField(form, LoginField::Agree);
    view.agree = form.agree;
    view.linkA = form.page == Page::Login ? L(u"注册账号", u"Sign up") : L(u"返回登录", u"Back to sign in");
    view.linkB = form.page == Page::Login ? L(u"忘记密码？", u"Forgot password?") : QString();
    view.info = form.info;
    view.error = multiLine(form.error);
    view.mainText = form.page == Page::Register ? L(u"注册", u"Sign Up") : L(u"登录", u"Sign In");
    view.busy = form.busy;
    return view;
}

} // namespace korvel
