#pragma once

#include "account/after_sign_in.h"
#include "account/binding.h"
#include "account/cn_login.h"
#include "app/model/fixed_config.h"
#include "base/alive.h"
#include "ports/app_services.h"
#include "ports/desktop.h"
#include "ports/windows.h"
#include "service/agent_config.h"

#include <optional>

namespace korvel {

/// The initial values of the sign-in dialog, kept from a failed attempt.
struct LoginAttempt {
    QString user = {};
    std::optional<QString> error = {};  ///< Why the last attempt failed.
    std::optional<QString> server = {}; ///< As typed in the last attempt.
    std::optional<bool> advanced = {};  ///< Whether the server can be chosen; none: if the Option key is down.
};

/// The alert for one attempt.
AlertView loginAlert(const LoginAttempt &attempt, bool isBound, const QString &serverInUse);

/// Asks for account and password in an alert until a sign-in succeeds or the user cancels. The mainland edition shows
/// the sign-in window instead.
class LoginDialog {
public:
    LoginDialog(const FixedConfig &fixed, const AgentConfig &config, const Desktop &desktop, Alerts &alerts,
                Notices &notices, CnLogin &cnLogin, Binding &binding, AfterSignIn &afterSignIn);

    void showLogin(LoginAttempt attempt = {});

private:
    /// Returns false if another alert is open, and brings that one to the front.
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
