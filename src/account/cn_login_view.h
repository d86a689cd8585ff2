#pragma once

#include "account/cn_login_form.h"
#include "ports/windows.h"

#include <QString>
#include <QStringList>
#include <functional>

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

/// An input of the user in the sign-in window.
struct LoginInput {
    enum class Kind {
        Account,  ///< the account changed to `text`
        Code,     ///< the code changed to `text`
        Password, ///< the password changed to `text`
        Agree,    ///< the agreement was ticked (`index` is not 0) or cleared
        Tab,      ///< the tab number `index` was chosen
        TabClick, ///< a tab was clicked with the pointer; follows Tab if the click chose it
        LinkA,
        LinkB,
        SendCode,
        Submit,
        Terms,
        Privacy,
        Close, ///< the window was closed
    };
    Kind kind;
    QString text = {};
    int index = 0;
};

/// Interface of the mainland sign-in window for its feature.
class LoginPanel {
public:
    virtual ~LoginPanel() = default;
    virtual void connect(std::function<void(const LoginInput &)> input) = 0;
    /// Brings the window to the front, and creates it if needed. Returns true if it was not on the screen; then it is
    /// also centred.
    virtual bool present(const CnLoginView &view, OpenedBy by) = 0;
    virtual void apply(const CnLoginView &view) = 0;
    virtual void focus(LoginField field) = 0;
    /// Closes the window without an input of Kind::Close, and discards the text typed into it.
    virtual void close() = 0;
};

} // namespace korvel
