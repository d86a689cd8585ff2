#pragma once

#include "app/model/tray_state.h"
#include "base/alive.h"
#include "ports/notices.h"
#include "ports/poller.h"
#include "ports/renderer.h"
#include "ports/service_control.h"
#include "service/agent_api.h"
#include "status/health.h"

#include <functional>
#include <vector>

namespace korvel {

/// Tells the user, once, that the sign-in or the account is gone.
Notice lostSignInNotice(HealthEffects::Notice which);

/// Asks the agent every 3 seconds how it is, and looks after its job when it does not answer.
class HealthPoll : public Poller {
public:
    struct Hooks {
        std::function<void()> e2Prompt; ///< Reacts to a new encryption report.
        std::function<void()> fetchPerms;
    };
    HealthPoll(TrayState &state, const FixedConfig &fixed, const AgentConfig &config, AgentApi &api,
               ServiceControl &services, Scheduler &scheduler, Notices &notices, Renderer &renderer, Hooks hooks);

    /// Starts the 3-second timer.
    void start();
    void poll(std::function<void()> then = {}) override;
    void ignorePollsInFlight() override { applied = sent + 1; }

private:
    void tick();
    void received(quint64 generation, const Result<QJsonObject> &reply, const std::function<void()> &then);
    void follow(const HealthEffects &effects, const std::function<void()> &then);
    void checkJob(const std::function<void()> &then);

    TrayState &state;
    const FixedConfig &fixed;
    const AgentConfig &config;
    AgentApi &api;
    ServiceControl &services;
    Scheduler &scheduler;
    Notices &notices;
    Renderer &renderer;
    Hooks hooks;
    int open = 0;             ///< Polls whose answer is outstanding.
    quint64 sent = 0;         ///< Generation of the poll sent last.
    quint64 applied = 0;      ///< Generation of the newest answer applied.
    bool checkingJob = false; ///< A look at the job is under way.
    std::vector<std::function<void()>> afterJobCheck;
    Timer timer;
    Alive alive;
};

} // namespace korvel
