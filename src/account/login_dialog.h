#pragma once

#include "account/after_sign_in.h"
#include "account/binding.h"
#include "account/cn_login.h"
#include "app/model/fixed_config.h"
#include "base/alive.h"
#include "ports/alerts.h"
#include "ports/desktop.h"
#include "ports/notices.h"
#include "service/agent_config.h"

#include <functional>
#include <optional>

namespace korvel {

/// What one showing of the sign-in dialog is given: what survives of a failed attempt.
struct LoginAttempt {
    QString user = {};
    std::optional<QString> error = {};  ///< Why the last attempt failed.
    std::optional<QString> server = {}; ///< As typed in the last attempt.
    std::optional<bool> advanced = {};  ///< Whether the server can be chosen; none: when the Option key is held now.
};

/// The alert of one attempt.
AlertView loginAlert(const LoginAttempt &attempt, bool isBound, const QString &serverInUse);

/// Asks for account and password in an alert, again and again until a sign-in succeeds or the user cancels. In the
/// mainland edition the sign-in window takes its place.
class LoginDialog {
public:
    LoginDialog(const FixedConfig &fixed, const AgentConfig &config, const Desktop &desktop, Alerts &alerts,
                Notices &notices, CnLogin &cnLogin, Binding &binding, AfterSignIn &afterSignIn);

    void showLogin(LoginAttempt attempt = {});

private:
    /// False when another alert is open: that one comes to the front instead.
    bool present(const LoginAttempt &attempt, OpenedBy by);
    void answered(LoginAttempt attempt, const QStringList &texts);
    void finished(LoginAttempt attempt, const Result<QString> &result);

    const FixedConfig &fixed;
    const AgentConfig &config;
    const Desktop &desktop;
    Alerts &alerts;
    Notices &notices;
    CnLogin &cnLogin;
    Binding &binding;
    AfterSignIn &afterSignIn;
    Alive alive;
};

} // namespace korvel
