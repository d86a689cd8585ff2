#pragma once

#include "base/result.h"

#include <QJsonObject>
#include <QString>
#include <optional>

namespace korvel {

enum class Page { Login, Register, Reset };

/// A field of the sign-in window that can have the keyboard, in their order on the screen.
enum class LoginField { Account, Code, Password, Agree };

/// Everything that the mainland sign-in window is in the middle of; no clock and no widget.
struct CnLoginForm {
    Page page = Page::Login;
    bool codeMode = false; ///< On the sign-in page: with a code sent to the phone instead of a password.
    bool sending = false;  ///< A code has been asked for.
    bool busy = false;     ///< A request other than that is under way.
    int countdown = 0;     ///< Seconds until a new code may be asked for.
    bool again = false;    ///< Renews the sign-in of an account whose session died.
    QString notice = {};   ///< Shown at the top.
    QString account = {};
    QString code = {};
    QString password = {};
    bool agree = false;
    QString info = {};
    QString error = {};
    bool operator==(const CnLoginForm &) const = default;
};

/// A form as it opens, for an account that may be known. A masked name is no account.
CnLoginForm openCnLoginForm(bool again, const QString &account, const QString &notice = {});

/// Turns to a page. The password and both lines are cleared.
void setPage(CnLoginForm &form, Page page);
/// Chooses the other way of signing in. What was typed stays; both lines are cleared.
void setCodeMode(CnLoginForm &form, bool codeMode);

/// Whether a code may be asked for now.
bool canSendCode(const CnLoginForm &form);
/// Counts down from `seconds`, kept within a day; 0: no waiting.
void startCountdown(CnLoginForm &form, qint64 seconds);

/// Begins to ask for a code and gives the request; none while that is not allowed.
std::optional<QJsonObject> sendCode(CnLoginForm &form);
/// Takes the answer to it.
void codeAnswered(CnLoginForm &form, const Result<QJsonObject> &answer);

/// Begins to submit the page and gives the request; none while another is under way.
std::optional<QJsonObject> submit(CnLoginForm &form);

/// What the answer to a submission comes to.
struct SubmitOutcome {
    std::optional<QString> user = {};     ///< Signed in as; the form stays busy.
    std::optional<LoginField> focus = {}; ///< The field that has to be looked at.
    bool bringToFront = false;
};
SubmitOutcome submitAnswered(CnLoginForm &form, const Result<QJsonObject> &answer);

/// Whether the page shows a field.
bool showsField(const CnLoginForm &form, LoginField field);
/// The first field that is shown and empty; the account when none is.
LoginField firstEmptyField(const CnLoginForm &form);

} // namespace korvel
