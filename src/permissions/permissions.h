#pragma once

#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/desktop.h"
#include "ports/notices.h"
#include "ports/renderer.h"
#include "service/agent_api.h"

#include <functional>

namespace korvel {

/// Follows which macOS permissions the agent holds, has it ask for the missing ones, and opens their settings.
class Permissions {
public:
    Permissions(PermissionState &permissions, const HealthState &health, AgentApi &api, Desktop &desktop,
                const Scheduler &scheduler, Notices &notices, Renderer &renderer);

    /// Asks the agent for its permissions, then calls `then`; at once while such a question is under way.
    void fetchPerms(std::function<void()> then = {});
    /// Has the agent bring up the system's prompts; it answers when the user is through with them.
    void askPerms();
    /// Opens the settings pane of a permission; does nothing with an address that is not one of settings.
    void openPermPane(const QJsonValue &pane) const;

private:
    void applyPerms(const QJsonObject &reply);
    void asked(const Result<QJsonObject> &reply);

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
