#pragma once

#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/app_services.h"
#include "ports/desktop.h"
#include "service/agent_api.h"

#include <functional>

namespace korvel {

/// Tracks the agent's macOS permissions, makes the agent request the missing ones, and opens their settings.
class Permissions {
public:
    Permissions(PermissionState &permissions, const HealthState &health, AgentApi &api, Desktop &desktop,
                const Scheduler &scheduler, Notices &notices, Renderer &renderer);

    /// Fetches the agent's permissions, then calls `then`. Calls `then` at once if a fetch is already in flight.
    void fetchPerms(std::function<void()> then = {});
    /// Makes the agent show the system's prompts. The agent responds once the user has answered them.
    void askPerms();
    /// Opens the settings pane of a permission. Ignores any other address.
    void openPermPane(const QJsonValue &pane) const;

private:
    void applyPerms(const QJsonObject &reply);
    void requested(const Result<QJsonObject> &reply);

    PermissionState &permissions;
    const HealthState &health;
    AgentApi &api;
    Desktop &desktop;
    const Scheduler &scheduler;
    Notices &notices;
    Renderer &renderer;
    Alive alive;
};

} // namespace korvel
