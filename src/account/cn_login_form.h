#pragma once

#include "base/result.h"

#include <QJsonObject>
#include <QString>
#include <optional>

namespace korvel {

enum class Page { Login, Register, Reset };

/// The fields of the sign-in window that can have keyboard focus, in screen order.
enum class LoginField { Account, Code, Password, Agree };

/// State of the mainland sign-in window; no clock and no widget.
struct CnLoginForm {
    Page page = Page::Login;
    bool codeMode = false; ///< On the sign-in page: a code sent to the phone instead of a password.
    bool sending = false;  ///< A request for a code is in flight.
    bool busy = false;     ///< Another request is in flight.
    int countdown = 0;     ///< Seconds until a new code may be requested.
    bool again = false;    ///< Renews the sign-in of an account whose session has ended.
    QString notice = {};   ///< Shown at the top.
    QString account = {};
    QString code = {};
    QString password = {};
    bool agree = false;
    QString info = {};
    QString error = {};
    bool operator==(const CnLoginForm &) const = default;
};

/// The initial form. Prefills `account` unless it is masked.
CnLoginForm openCnLoginForm(bool again, const QString &account, const QString &notice = {});

/// Switches to a page. Clears the password and both lines.
void setPage(CnLoginForm &form, Page page);
/// Switches between password and code. Keeps the input and clears both lines.
void setCodeMode(CnLoginForm &form, bool codeMode);

/// Whether a code may be requested now.
bool canSendCode(const CnLoginForm &form);
/// Counts down from `seconds`, at most a day; 0: no waiting.
void startCountdown(CnLoginForm &form, qint64 seconds);

/// Starts the request for a code and returns it; none while none is allowed.
std::optional<QJsonObject> sendCode(CnLoginForm &form);
/// Applies the response to it.
void applyCodeResponse(CnLoginForm &form, const Result<QJsonObject> &response);

/// Starts submitting the page and returns the request; none while another is in flight.
std::optional<QJsonObject> submit(CnLoginForm &form);

/// The result of a submission.
struct SubmitOutcome {
    std::optional<QString> user = {};     ///< The account that is signed in; the form stays busy.
    std::optional<LoginField> focus = {}; ///< The field that gets the keyboard focus.
    bool bringToFront = false;
};
SubmitOutcome applySubmitResponse(CnLoginForm &form, const Result<QJsonObject> &response);

/// Whether the page shows a field.
bool showsField(const CnLoginForm &form, LoginField field);
/// The first visible field that is empty; the account if none is.
LoginField firstEmptyField(const CnLoginForm &form);

} // namespace korvel
