#pragma once

#include "app/model/tray_state.h"
#include "base/alive.h"
#include "ports/app_services.h"
#include "ports/service_control.h"
#include "service/agent_api.h"
#include "status/health.h"

#include <functional>
#include <vector>

namespace korvel {

/// Reports that the sign-in has ended or the account is deleted.
Notice lostSignInNotice(HealthEffects::Notice which);

/// Polls the agent's health every 3 seconds, and looks up the state of its job when it does not respond.
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
    int open = 0;             ///< Polls in flight.
    quint64 sent = 0;         ///< Generation of the poll sent last.
    quint64 applied = 0;      ///< Generation of the newest response applied.
    bool checkingJob = false; ///< A job lookup is in flight.
    std::vector<std::function<void()>> afterJobCheck;
    Timer timer;
    Alive alive;
};

} // namespace korvel
