#pragma once

#include "ports/opened_by.h"

#include <QString>
#include <functional>

namespace korvel {

struct CnLoginView;
enum class LoginField;

/// What the user does in the sign-in window.
struct LoginInput {
    enum class Kind {
        Account,  ///< `text` was typed as the account
        Code,     ///< as the code
        Password, ///< as the password
        Agree,    ///< the agreement was ticked, or not (`index`)
        Tab,      ///< the way of signing in number `index` was chosen
        TabClick, ///< a tab was clicked with the pointer, after Tab where that chose it
        LinkA,
        LinkB,
        SendCode,
        Submit,
        Terms,
        Privacy,
        Close, ///< the window is gone
    };
    Kind kind;
    QString text = {};
    int index = 0;
};

/// The mainland sign-in window as its feature sees it.
class LoginPanel {
public:
    virtual ~LoginPanel() = default;
    virtual void connect(std::function<void(const LoginInput &)> input) = 0;
    /// Brings the window to the front, made if there is none. True when it was not on the screen before; then it is
    /// centred too.
    virtual bool present(const CnLoginView &view, OpenedBy by) = 0;
    virtual void apply(const CnLoginView &view) = 0;
    virtual void focus(LoginField field) = 0;
    /// Closes the window without an input of Kind::Close, and forgets what was typed into it.
    virtual void close() = 0;
};

} // namespace korvel
