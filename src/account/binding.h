#pragma once

#include "account/server_api.h"
#include "app/fixed_config.h"
#include "app/tray_state.h"
#include "platform/alive.h"
#include "platform/desktop.h"
#include "service/agent_config.h"

#include <functional>

namespace korvel {

/// Signs this Mac in with a password and keeps the credential that comes of it: in the agent configuration, and at no
/// more than one server at a time.
class Binding {
public:
    struct Hooks {
        std::function<void(std::function<void()> then)> restartAgent;
        std::function<void()> disregardOpenPolls;
    };
    Binding(HealthState &health, const FixedConfig &fixed, const AgentConfig &config, ServerClient &servers,
            const Desktop &desktop, Hooks hooks);

    /// Signs in at `server` (host:port). `done` is called once, with whether this Mac is bound now and the sentence for
    /// the user.
    void performLogin(const QString &user, const QString &pass, const QString &server,
                      std::function<void(bool ok, const QString &message)> done);
    /// From now on no sign-in that is under way binds this Mac; the credential that it may get is given back.
    void abandonLogins() { ++generation; }
    /// Releases an older, different credential where it is held, stores `credential` and restarts the agent with it.
    /// `then` is called once, with whether it could be stored.
    void bind(const Credential &credential, const QString &username, const QString &server,
              std::function<void(bool stored)> then);
    /// Releases `token` at `server`, then calls `then` once, whatever came of it.
    void unbind(const QString &token, const QString &server, std::function<void()> then);
    /// Releases the stored credential, if there is one.
    void unbindCurrent(std::function<void()> then);

private:
    void forgetLostSignIn();
    void store(const Credential &credential, const QString &username, const QString &server,
               std::function<void(bool stored)> then);

    HealthState &health;
    const FixedConfig &fixed;
    const AgentConfig &config;
    ServerClient &servers;
    const Desktop &desktop;
    Hooks hooks;
    int generation = 0; ///< Of sign-ins: only the newest one binds this Mac.
    Alive alive;
};

} // namespace korvel
