#pragma once

#include "account/after_sign_in.h"
#include "account/cn_login.h"
#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/app_services.h"
#include "ports/desktop.h"
#include "service/agent_api.h"
#include "service/agent_control.h"

namespace korvel {

AgentRequest authStartRequest(const QString &device);
AgentRequest authStatusRequest(const QString &id);

/// Sign-in through the web browser. The agent names the page and binds this Mac; the tray opens the page and polls the
/// agent for the status every second. In the mainland edition it opens the sign-in window instead.
class BrowserLogin {
public:
    BrowserLogin(BrowserLoginState &login, const HealthState &health, const FixedConfig &fixed, AgentApi &api,
                 Desktop &desktop, Scheduler &scheduler, Notices &notices, CnLogin &cnLogin, AgentControl &agent,
                 AfterSignIn &afterSignIn);

    /// Starts a sign-in, or opens the page of the current one again. `attempt` counts the previous attempts.
    void startBrowserLogin(int attempt = 0);
    /// Polls the agent once for the status of the current sign-in.
    void pollBrowserLogin();
    /// Ends the sign-in, also while it waits for the agent.
    void stopBrowserLogin();

private:
    bool reopenPage();
    void waitForAgent(int attempt);
    void started(const Result<QJsonObject> &reply);
    void open(const QString &id, const QString &url);
    void outcome(const QJsonObject &response);

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
    bool starting = false; ///< Waits for the agent to start or to respond.
    int starts = 0;        ///< Counts the start requests to the agent.
    Timer nextAttempt;
    Timer browserLoginTimer;
    Alive alive;
};

} // namespace korvel
