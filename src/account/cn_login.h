#pragma once

#include "account/after_sign_in.h"
#include "account/cn_login_form.h"
#include "account/login_panel.h"
#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/desktop.h"
#include "service/agent_command.h"
#include "service/agent_config.h"

#include <functional>
#include <optional>

namespace korvel {

/// The mainland sign-in window: collects what the user types, hands each operation to the agent's command line and
/// shows its answers. The agent signs in and binds this Mac itself.
class CnLogin {
public:
    CnLogin(const HealthState &health, const FixedConfig &fixed, const AgentConfig &config, LoginPanel &window,
            Desktop &desktop, Scheduler &scheduler, AgentCommand &command, AfterSignIn &afterSignIn);

    /// Opens the window, or brings the open one to the front.
    void showCnLogin();

private:
    void input(const LoginInput &input);
    void turnTo(Page page);
    void chooseMode(bool codeMode);
    void sendCode();
    void submit();
    void received(const Result<QJsonObject> &answer);
    void cnLoggedIn(const QString &user);
    void runTick();
    void show();
    void forget();

    const HealthState &health;
    const FixedConfig &fixed;
    const AgentConfig &config;
    LoginPanel &window;
    Desktop &desktop;
    Scheduler &scheduler;
    AgentCommand &command;
    AfterSignIn &afterSignIn;
    std::optional<CnLoginForm> form; ///< None: no window is open.
    int opening = 0;                 ///< Counts windows, so that an answer for a closed one is told.
    Timer tick;
    Alive alive;
};

} // namespace korvel
