#pragma once

#include "app/model/fixed_config.h"
#include "app/model/paths.h"
#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "ports/app_services.h"
#include "ports/desktop.h"
#include "ports/programs.h"
#include "ports/server_client.h"
#include "service/agent_config.h"

#include <functional>
#include <optional>

namespace korvel {

/// The request for a package at `server`; none without a valid URL.
std::optional<ServerRequest> buildDownload(const QString &server, const UpdateInfo &info);

/// Downloads the announced package into the private cache, verifies it and installs it with administrator rights. Each
/// step verifies the package again, because the user's programs can write to the cache.
class UpdateInstall {
public:
    UpdateInstall(UpdateState &update, const FixedConfig &fixed, const Paths &paths, const AgentConfig &config,
                  ServerClient &servers, Programs &programs, Desktop &desktop, Scheduler &scheduler, Notices &notices,
                  Poller &poller, Renderer &renderer);

    void installUpdate();
    /// Cancels the administrator prompt, which has no time limit.
    void cancelInstall();

private:
    void begin(const UpdateInfo &info);
    bool prepareCache(const UpdateInfo &info) const;
    QString cached(const UpdateInfo &info) const;
    void startDownload(const UpdateInfo &info);
    void progress(qint64 got, qint64 expected, const UpdateInfo &info);
    void downloaded(const Result<HttpReply> &reply, const UpdateInfo &info);
    void keep(const UpdateInfo &info);
    void ifUnchanged(const UpdateInfo &info, std::function<void()> then);
    void installPkg(const UpdateInfo &info);
    void runInstaller(const UpdateInfo &info);
    void installed(const ProgramResult &result, const UpdateInfo &info);
    void refuseModified(const UpdateInfo &info);
    void end(const Notice &notice);

    UpdateState &update;
    const FixedConfig &fixed;
    const Paths &paths;
    const AgentConfig &config;
    ServerClient &servers;
    Programs &programs;
    Desktop &desktop;
    Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Renderer &renderer;
    StopToken installer; ///< Stops the run that asks for an administrator's password.
    Alive alive;
};

} // namespace korvel
