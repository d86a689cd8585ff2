#pragma once

#include "account/server_api.h"
#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/done.h"
#include "ports/app_services.h"
#include "ports/desktop.h"
#include "service/agent_config.h"
#include "service/agent_control.h"

#include <functional>

namespace korvel {

/// Signs this Mac in with a password and stores the credential in the agent configuration. This Mac is bound at no more
/// than one server at a time.
class Binding {
public:
    Binding(HealthState &health, const FixedConfig &fixed, const AgentConfig &config, ConfigWaiter &waiter,
            ServerClient &servers, const Desktop &desktop, Poller &poller, AgentControl &agent);

    /// Signs in at `server` (host:port). `done` gets the sentence for the user: a value if this Mac is bound, else the
    /// detail of the error.
    void performLogin(const QString &user, const QString &pass, const QString &server, Done<QString> done);
    /// Prevents the sign-ins in flight from binding this Mac. A credential that they receive is released.
    void abandonLogins() { abandoned = signIns; }
    /// Releases the stored credential, if there is one.
    void unbindCurrent(std::function<void()> then) { unbindCurrent(std::move(then), {}); }

private:
    enum class Outcome { Bound, NotSaved, Overtaken };
    struct SignIn {
        int number = 0;
        Credential credential;
        QString username;
        QString server;
        std::function<void(Outcome)> then; ///< Called once.
    };

    /// Releases an older, different credential at its server, stores the new one and restarts the agent. `released` is
    /// the credential that has been released already.
    void bind(const SignIn &signIn, const QString &released);
    void store(const SignIn &signIn);
    static QString message(Outcome outcome, const QString &user);
    void write(const SignIn &signIn, QJsonObject &cfg) const;
    void giveBack(const SignIn &signIn, Outcome why);
    bool isOvertaken(const SignIn &signIn) const;
    void forgetLostSignIn();
    /// Releases `token` at `server`, then calls `then` once, also on failure.
    void unbind(const QString &token, const QString &server, std::function<void()> then);
    void unbindCurrent(std::function<void()> then, const QString &released);

    HealthState &health;
    const FixedConfig &fixed;
    const AgentConfig &config;
    ConfigWaiter &waiter;
    ServerClient &servers;
    const Desktop &desktop;
    Poller &poller;
    AgentControl &agent;
    int signIns = 0;     ///< Number of the last sign-in.
    int abandoned = 0;   ///< The last one that a sign-out cancelled.
    int newestBound = 0; ///< No older one may bind this Mac.
    Alive alive;
};

} // namespace korvel
