#include "account/login_dialog.h"

#include "account/account_notices.h"
#include "account/server_rules.h"
#include "app/model/wording.h"
#include "base/plain_text.h"
#include "service/agent_config.h"

namespace korvel {

namespace {
enum Field { Account, Password, Server };
} // namespace

AlertView loginAlert(const LoginAttempt &attempt, bool isBound, const QString &serverInUse) {
    AlertView view{.title = isBound ? L(u"重新登录 Korvel", u"Sign In to Korvel Again")
                                    : L(u"登录 Korvel", u"Sign In to Korvel"),
                   .fromOutside = multiLine(attempt.error.value_or(QString())),
                   .warning = attempt.error.has_value(),
                   .buttons = {L(u"登录", u"Sign In"), L(u"取消", u"Cancel")},
                   .escape = 1,
                   .fields = {{.label = L(u"邮箱", u"Email"), .text = attempt.user},
                              {.kind = AlertField::Kind::Secret, .label = L(u"密码", u"Password")}}};
    if (attempt.advanced.value_or(false))
        view.fields.append({.kind = AlertField::Kind::Address,
                            .label = L(u"服务器", u"Server"),
                            .text = attempt.server.value_or(serverInUse)});
    return view;
}

LoginDialog::LoginDialog(const FixedConfig &f, const AgentConfig &c, const Desktop &d, Alerts &al, Notices &no,
                         CnLogin &cn, Binding &bi, AfterSignIn &as)
    : fixed(f), config(c), desktop(d), alerts(al), notices(no), cnLogin(cn), binding(bi), afterSignIn(as) {}

void LoginDialog::showLogin(LoginAttempt attempt) {
    if (fixed.IS_CN)
        return cnLogin.showCnLogin();
    if (!attempt.advanced)
        attempt.advanced = desktop.optionKeyHeld();
    present(attempt, OpenedBy::User);
}

bool LoginDialog::present(const LoginAttempt &attempt, OpenedBy by) {
    const AgentCfg cfg = config.readCfg();
    return alerts.open(loginAlert(attempt, cfg.bound(), serverOf(fixed, cfg.server)), by,
                       alive.guard([this, attempt](const AlertAnswer &answer) {
                           if (answer.button == 0)
                               answered(attempt, answer.texts);
                       }));
}

void LoginDialog::answered(LoginAttempt attempt, const QStringList &texts) {
    attempt.user = texts.value(Account);
    const QString pass = texts.value(Password);
    const QString typed = *attempt.advanced ? texts.value(Server) : serverOf(fixed, config.readCfg().server);
    attempt.server = typed;
    if (attempt.user.isEmpty() || pass.isEmpty()) {
        attempt.error = L(u"请输入邮箱和密码", u"Enter your email and password.");
        return showLogin(attempt);
    }
    const auto server = normalizeServer(typed);
    if (!server) {
        attempt.error = L(u"服务器地址格式不正确", u"The server address isn't valid.");
        return showLogin(attempt);
    }
    notices.showHUD(signingInNotice());
    binding.performLogin(attempt.user, pass, *server,
                         alive.guard([this, attempt](const Result<QString> &result) { finished(attempt, result); }));
}

void LoginDialog::finished(LoginAttempt attempt, const Result<QString> &result) {
    if (!result) {
        // The dialog shows the failure; a notice must not still say "signing in" above it.
        notices.hideHUD();
        attempt.error = result.error().detail;
        // Another alert may have opened meanwhile.
        if (!present(attempt, OpenedBy::Program))
            notices.showHUD(signInFailedNotice(*attempt.error));
        return;
    }
    afterSignIn.signedIn(attempt.user);
}

} // namespace korvel
