#include "update/update_check.h"

#include "account/server_api.h"
#include "account/server_rules.h"
#include "base/log.h"
#include "update/manifest.h"
#include "update/update_notices.h"

using namespace Qt::StringLiterals;

namespace korvel {

std::optional<ServerRequest> buildManifest(const QString &server) {
    auto request = buildServerRequest(server, u"/v1/dl/manifest"_s, 15s);
    if (request)
        request->redirects = MAX_REDIRECTS;
    return request;
}

UpdateCheck::UpdateCheck(UpdateState &u, const FixedConfig &f, const AgentConfig &c, ServerClient &sc,
                         const Scheduler &s, Notices &no, Renderer &re)
    : update(u), fixed(f), config(c), servers(sc), scheduler(s), notices(no), renderer(re) {}

void UpdateCheck::checkUpdate(bool manual) {
    auto request = buildManifest(serverOf(fixed, config.readCfg().server));
    if (!request)
        return;
    auto done = [this, manual](const Result<HttpReply> &reply) { received(reply, manual); };
    servers.send(std::move(*request), alive.guard(std::move(done)));
}

void UpdateCheck::received(const Result<HttpReply> &reply, bool manual) {
    update.updateCheckedAt = scheduler.now();
    const bool good = reply && reply.value().status == 200;
    const auto info = good ? packageIn(fixed, reply.value().body) : std::nullopt;
    if (info)
        return found(*info, manual);
    if (reply)
        notChecked(u"HTTP %1 "_s.arg(reply.value().status), {}, manual);
    else
        notChecked(u"HTTP 0 "_s + reply.error().detail, netErrorText(reply.error()), manual);
}

void UpdateCheck::notChecked(const QString &why, const QString &sentence, bool manual) {
    log(u"[update] 清单取不到:"_s + why);
    if (manual)
        notices.showHUD(notCheckedNotice(sentence));
}

void UpdateCheck::found(const UpdateInfo &info, bool manual) {
    // Until the installed version is running, an older one must not replace it.
    if (!isNewer(info.ver, fixed.VERSION) || !isNewer(info.ver, update.updatedTo)) {
        if (manual)
            notices.showHUD(upToDateNotice(fixed.VERSION));
        return;
    }
    if (!isWellFormed(info))
        return refuse(info, manual);
    verifyUpdate(servers, fixed, info, alive.guard([this, info, manual](const Result<bool> &valid) {
        if (!valid)
            notChecked(valid.error().detail, {}, manual);
        else if (valid.value())
            announce(info, manual);
        else
            refuse(info, manual);
    }));
}

void UpdateCheck::refuse(const UpdateInfo &info, bool manual) {
    log(u"[update] %1 没通过签名校验(file=%2 sha=%3 sig=%4),不提供自动更新"_s.arg(info.ver, info.file, info.sha,
                                                                                  info.sig));
    if (manual)
        notices.showHUD(unsignedNotice(info.ver, fixed.SITE_URL));
}

void UpdateCheck::announce(const UpdateInfo &info, bool manual) {
    // The menu keeps showing the version that is being installed; the next check finds the newer one again.
    if (update.updateBusy)
        return;
    update.updateAvail = info;
    renderer.stateChanged();
    if (!manual && update.updateNotified)
        return;
    update.updateNotified = true;
    notices.showHUD(availableNotice(info.ver));
}

} // namespace korvel
