#include "account/cn_login.h"

#include "account/cn_login_view.h"
#include "account/server_rules.h"
#include "service/agent_config.h"

namespace korvel {

namespace {
constexpr milliseconds TICK = 1s;
}

CnLogin::CnLogin(const HealthState &st, const FixedConfig &f, const AgentConfig &c, LoginPanel &w, Desktop &d,
                 Scheduler &s, AgentCommand &co, AfterSignIn &as)
    : health(st), fixed(f), config(c), window(w), desktop(d), scheduler(s), command(co), afterSignIn(as) {
    window.connect([this](const LoginInput &i) { input(i); });
}

void CnLogin::showCnLogin() {
    if (!form) {
        ++opening;
        const bool again = config.readCfg().bound() && health.authDead && !health.accountGone;
        form = openCnLoginForm(again, again ? health.account : QString());
    }
    if (window.present(cnLoginView(*form), OpenedBy::User))
        window.focus(firstEmptyField(*form));
}

void CnLogin::input(const LoginInput &i) {
    if (!form)
        return;
    switch (i.kind) {
    case LoginInput::Kind::Account:
        form->account = i.text;
        return;
    case LoginInput::Kind::Code:
        form->code = i.text;
        return;
    case LoginInput::Kind::Password:
        form->password = i.text;
        return;
    case LoginInput::Kind::Agree:
        form->agree = i.index != 0;
        return;
    case LoginInput::Kind::Tab:
        return chooseMode(i.index == 0);
    case LoginInput::Kind::TabClick:
        return window.focus(firstEmptyField(*form));
    case LoginInput::Kind::LinkA:
        return turnTo(form->page == Page::Login ? Page::Register : Page::Login);
    case LoginInput::Kind::LinkB:
        return turnTo(Page::Reset);
    case LoginInput::Kind::SendCode:
        return sendCode();
    case LoginInput::Kind::Submit:
        return submit();
    case LoginInput::Kind::Terms:
        return desktop.openUrl(fixed.TERMS_URL);
    case LoginInput::Kind::Privacy:
        return desktop.openUrl(fixed.PRIVACY_URL);
    case LoginInput::Kind::Close:
        return forget();
    }
}

void CnLogin::turnTo(Page page) {
    if (form->busy)
        return;
    setPage(*form, page);
    show();
    window.focus(LoginField::Account);
}

void CnLogin::chooseMode(bool codeMode) {
    if (form->busy || form->codeMode == codeMode)
        return;
    setCodeMode(*form, codeMode);
    show();
}

void CnLogin::sendCode() {
    const auto request = korvel::sendCode(*form);
    if (!request)
        return;
    show();
    command.runAgentJson(*request, alive.guard([this, requested = opening](const Result<QJsonObject> &response) {
        if (!form || requested != opening)
            return;
        applyCodeResponse(*form, response);
        runTick();
        show();
    }));
}

void CnLogin::submit() {
    const auto request = korvel::submit(*form);
    if (!request)
        return;
    show();
    CnLoginForm submitted = *form;
    submitted.password.clear(); // no second copy of it in memory
    command.runAgentJson(*request, alive.guard([this, sent = std::move(submitted),
                                                requested = opening](const Result<QJsonObject> &response) mutable {
        if (form && requested == opening)
            received(response);
        // Closing the window does not cancel a sign-in: its success is still reported.
        else if (const auto user = applySubmitResponse(sent, response).user)
            cnLoggedIn(*user);
    }));
}

void CnLogin::received(const Result<QJsonObject> &response) {
    const SubmitOutcome outcome = applySubmitResponse(*form, response);
    if (outcome.user)
        return cnLoggedIn(*outcome.user);
    if (outcome.bringToFront)
        window.present(cnLoginView(*form), OpenedBy::Program);
    else
        show();
    if (outcome.focus)
        window.focus(*outcome.focus);
}

void CnLogin::cnLoggedIn(const QString &user) {
    window.close();
    forget();
    afterSignIn.signedIn(user);
}

void CnLogin::runTick() {
    tick.cancel();
    if (form->countdown < 1)
        return;
    tick = scheduler.every(TICK, [this] {
        startCountdown(*form, form->countdown - 1);
        if (form->countdown == 0)
            tick.cancel();
        show();
    });
}

void CnLogin::show() { window.apply(cnLoginView(*form)); }

void CnLogin::forget() {
    tick.cancel();
    form.reset();
}

} // namespace korvel
