#pragma once

#include "account/after_sign_in.h"
#include "account/cn_login_form.h"
#include "account/cn_login_view.h"
#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/desktop.h"
#include "service/agent_command.h"
#include "service/agent_config.h"

#include <optional>

namespace korvel {

/// The mainland sign-in window: collects the input, runs each operation through the agent's command line and shows the
/// replies. The agent itself signs in and binds this Mac.
class CnLogin {
public:
    CnLogin(const HealthState &health, const FixedConfig &fixed, const AgentConfig &config, LoginPanel &window,
            Desktop &desktop, Scheduler &scheduler, AgentCommand &command, AfterSignIn &afterSignIn);

    /// Opens the window, or brings it to the front if it is open.
    void showCnLogin();

private:
    void input(const LoginInput &input);
    void turnTo(Page page);
    void chooseMode(bool codeMode);
    void sendCode();
    void submit();
    void received(const Result<QJsonObject> &response);
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
    std::optional<CnLoginForm> form; ///< None while no window is open.
    int opening = 0;                 ///< Counts windows, to recognise a reply that belongs to a closed one.
    Timer tick;
    Alive alive;
};

} // namespace korvel
