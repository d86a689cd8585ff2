#pragma once

#include "account/cn_login_form.h"

#include <QString>
#include <QStringList>

namespace korvel {

/// One labelled field of the sign-in window.
struct LoginFieldView {
    bool visible = true; ///< Always true for the account.
    QString label;
    QString placeholder = {};
    QString text = {};
    bool operator==(const LoginFieldView &) const = default;
};

/// Everything that the mainland sign-in window shows.
struct CnLoginView {
    QString title;
    QString notice;   ///< Empty: hidden.
    QStringList tabs; ///< Ways of signing in; empty: hidden.
    int tab = 0;
    LoginFieldView account, code, password;
    QString sendText;
    bool sendEnabled = true;
    bool agreeVisible = false;
    bool agree = false;
    QString linkA;
    QString linkB; ///< Empty: hidden.
    QString info;
    QString error;
    QString mainText;
    bool busy = false; ///< A request is in flight and the controls are disabled.
    bool operator==(const CnLoginView &) const = default;
};

CnLoginView cnLoginView(const CnLoginForm &form);

} // namespace korvel
