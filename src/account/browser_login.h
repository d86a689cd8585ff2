#pragma once

#include "account/after_sign_in.h"
#include "account/cn_login.h"
#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/desktop.h"
#include "ports/notices.h"
#include "service/agent_api.h"
#include "service/agent_control.h"

#include <functional>
#include <optional>

namespace korvel {

AgentRequest authStartRequest(const QString &device);
AgentRequest authStatusRequest(const QString &id);

/// Sign-in through the web browser: the agent names the page and does the binding, the tray opens the page and asks the
/// agent every second how it went. In the mainland edition the same entrance leads to the sign-in window.
class BrowserLogin {
public:
    BrowserLogin(BrowserLoginState &login, const HealthState &health, const FixedConfig &fixed, AgentApi &api,
                 Desktop &desktop, Scheduler &scheduler, Notices &notices, CnLogin &cnLogin, AgentControl &agent,
                 AfterSignIn &afterSignIn);

    /// Starts a sign-in, or opens the page of the open one again. `attempt` counts the tries before this one.
    void startBrowserLogin(int attempt = 0);
    /// Asks the agent once how the open sign-in went.
    void pollBrowserLogin();
    /// Ends the attempt, also one that still waits for the agent.
    void stopBrowserLogin();

private:
    bool reopenPage();
    void waitForAgent(int attempt);
    void started(const Result<QJsonObject> &reply);
    void open(const QString &id, const QString &url);
    void outcome(const QJsonObject &answer);

    BrowserLoginState &login;
    const HealthState &health;
    const FixedConfig &fixed;
    AgentApi &api;
    Desktop &desktop;
    Scheduler &scheduler;
    Notices &notices;
    CnLogin &cnLogin;
    AgentControl &agent;
    AfterSignIn &afterSignIn;
    bool starting = false; ///< Waits for the agent, to come up or to answer.
    int starts = 0;        ///< Counts the questions to the agent.
    Timer nextAttempt;
    Timer browserLoginTimer;
    Alive alive;
};

} // namespace korvel
