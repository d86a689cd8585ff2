#include "account/cn_login_form.h"

#include "app/model/wording.h"
#include "base/json.h"
#include "service/agent_api.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr qint64 MAX_COUNTDOWN = 86400;
constexpr qint64 USUAL_COUNTDOWN = 60;

QString errOf(const Result<QJsonObject> &response) {
    const QString error = response ? response->value(u"error").toString() : QString();
    return error.isEmpty() ? L(u"无法完成操作，请检查网络后重试", u"Couldn't finish. Check your network and try again.")
                           : error;
}

void clearLines(CnLoginForm &form) {
    form.info.clear();
    form.error.clear();
}

/// A code in the server's form. Messages write it as "123 456", with spaces of any kind; some keyboards type full-width
/// digits.
QString plainCode(const QString &typed) {
    QString code;
    for (const QChar c : typed) {
        if (c.category() == QChar::Number_DecimalDigit)
            code += QString::number(c.digitValue());
        else if (!c.isSpace() && c.category() != QChar::Other_Format) // Other_Format: zero-width spaces
            code += c;
    }
    return code;
}

QString purpose(Page page) {
    switch (page) {
    case Page::Register:
        return u"register"_s;
    case Page::Reset:
        return u"reset"_s;
    case Page::Login:
        break;
    }
    return u"login"_s;
}

QJsonObject submission(const CnLoginForm &form) {
    const QString account = form.account.trimmed();
    const QString code = plainCode(form.code);
    switch (form.page) {
    case Page::Register:
        return {{u"op"_s, u"register"_s},
                {u"phone"_s, account},
                {u"code"_s, code},
                {u"password"_s, form.password},
                {u"agree"_s, form.agree}};
    case Page::Reset:
        return {{u"op"_s, u"reset"_s}, {u"phone"_s, account}, {u"code"_s, code}, {u"password"_s, form.password}};
    case Page::Login:
        break;
    }
    if (form.codeMode)
        return {{u"op"_s, u"login-code"_s}, {u"phone"_s, account}, {u"code"_s, code}};
    return {{u"op"_s, u"login"_s}, {u"username"_s, account}, {u"password"_s, form.password}};
}

/// The field that a response names, if the page shows it; else the first empty one.
LoginField focusField(const CnLoginForm &form, const Result<QJsonObject> &response) {
    const QString name = response ? response->value(u"field").toString() : QString();
    LoginField field = firstEmptyField(form);
    if (name == u"agree")
        field = LoginField::Agree;
    else if (name == u"phone" || name == u"username")
        field = LoginField::Account;
    else if (name == u"code")
        field = LoginField::Code;
    else if (name == u"password")
        field = LoginField::Password;
    return showsField(form, field) ? field : firstEmptyField(form);
}

} // namespace

CnLoginForm openCnLoginForm(bool again, const QString &account, const QString &notice) {
    CnLoginForm form;
    form.again = again;
    form.account = account.contains(u'*') ? QString() : account;
    form.notice = notice;
    return form;
}

void setPage(CnLoginForm &form, Page page) {
    form.page = page;
    form.password.clear();
    clearLines(form);
}

void setCodeMode(CnLoginForm &form, bool codeMode) {
    form.codeMode = codeMode;
    clearLines(form);
}

bool canSendCode(const CnLoginForm &form) { return !form.busy && !form.sending && form.countdown == 0; }

void startCountdown(CnLoginForm &form, qint64 seconds) {
    form.countdown = static_cast<int>(std::clamp<qint64>(seconds, 0, MAX_COUNTDOWN));
}

std::optional<QJsonObject> sendCode(CnLoginForm &form) {
    if (!canSendCode(form))
        return std::nullopt;
    form.sending = true;
    clearLines(form);
    return QJsonObject{
        {u"op"_s, u"send-code"_s}, {u"phone"_s, form.account.trimmed()}, {u"purpose"_s, purpose(form.page)}};
}

void applyCodeResponse(CnLoginForm &form, const Result<QJsonObject> &response) {
    form.sending = false;
    if (agentOk(response)) {
        startCountdown(form, jsonInteger(response->value(u"next")).value_or(USUAL_COUNTDOWN));
        form.info = L(u"验证码已发送", u"Code sent.");
        form.error.clear();
        return;
    }
    const qint64 retryAfter = response ? jsonInteger(response->value(u"retryAfter")).value_or(0) : 0;
    if (retryAfter >= 1)
        startCountdown(form, retryAfter);
    form.error = errOf(response);
}

std::optional<QJsonObject> submit(CnLoginForm &form) {
    if (form.busy)
        return std::nullopt;
    clearLines(form);
    form.busy = true;
    return submission(form);
}

SubmitOutcome applySubmitResponse(CnLoginForm &form, const Result<QJsonObject> &response) {
    const QString account = form.account.trimmed();
    if (agentOk(response))
        return {.user = jsonText(response->value(u"user")).value_or(account)};
    form.busy = false;
    if (response && response->value(u"reset").toBool()) {
        // The password is changed, but the sign-in with it failed.
        form.codeMode = false;
        setPage(form, Page::Login);
        form.account = account;
        form.error = errOf(response);
        return {.focus = LoginField::Password};
    }
    form.info.clear();
    form.error = errOf(response);
    return {.focus = focusField(form, response), .bringToFront = true};
}

bool showsField(const CnLoginForm &form, LoginField field) {
    switch (field) {
    case LoginField::Account:
        return true;
    case LoginField::Code:
        return form.page != Page::Login || form.codeMode;
    case LoginField::Password:
        return form.page != Page::Login || !form.codeMode;
    case LoginField::Agree:
        return form.page == Page::Register;
    }
    return false;
}

LoginField firstEmptyField(const CnLoginForm &form) {
    if (form.account.trimmed().isEmpty())
        return LoginField::Account;
    if (showsField(form, LoginField::Code) && form.code.isEmpty())
        return LoginField::Code;
    if (showsField(form, LoginField::Password) && form.password.isEmpty())
        return LoginField::Password;
    return LoginField::Account;
}

} // namespace korvel
