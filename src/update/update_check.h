#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/app_services.h"
#include "ports/server_client.h"
#include "service/agent_config.h"

#include <optional>

namespace korvel {

/// The request for the manifest at `server` (host:port); none without a valid URL.
std::optional<ServerRequest> buildManifest(const QString &server);

/// Checks the account server for a newer package and announces it if the publisher signed it.
class UpdateCheck {
public:
    UpdateCheck(UpdateState &update, const FixedConfig &fixed, const AgentConfig &config, ServerClient &servers,
                const Scheduler &scheduler, Notices &notices, Renderer &renderer);

    /// Runs one check. Shows failures only if the user requested it (`manual`).
    void checkUpdate(bool manual);

private:
    void received(const Result<HttpReply> &reply, bool manual);
    void notChecked(const QString &why, const QString &sentence, bool manual);
    void found(const UpdateInfo &info, bool manual);
    void refuse(const UpdateInfo &info, bool manual);
    void announce(const UpdateInfo &info, bool manual);

    UpdateState &update;
    const FixedConfig &fixed;
    const AgentConfig &config;
    ServerClient &servers;
    const Scheduler &scheduler;
    Notices &notices;
    Renderer &renderer;
    Alive alive;
};

} // namespace korvel
