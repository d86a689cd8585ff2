#include "update/update_check.h"

#include "account/net_error.h"
#include "account/server_api.h"
#include "account/server_rules.h"
#include "app/wording.h"
#include "platform/log.h"
#include "update/manifest.h"
#include "update/signature.h"

using namespace Qt::StringLiterals;

namespace korvel {

std::optional<HttpRequest> buildManifest(const QString &server) {
    auto request = buildServerRequest(server, u"/v1/dl/manifest"_s, 15s);
    if (request)
        request->redirects = MOST_REDIRECTS;
    return request;
}

UpdateCheck::UpdateCheck(UpdateState &u, const FixedConfig &f, const AgentConfig &c, HttpClient &h, const Scheduler &s,
                         Hooks hk)
    : update(u), fixed(f), config(c), http(h), scheduler(s), hooks(std::move(hk)) {}

void UpdateCheck::checkUpdate(bool manual) {
    auto request = buildManifest(serverOf(fixed, config.readCfg()));
    if (!request)
        return;
    auto done = [this, manual](const Result<HttpReply> &reply) { answered(reply, manual); };
    http.send(std::move(*request), Done<HttpReply>(alive.guard(std::move(done))));
}

void UpdateCheck::answered(const Result<HttpReply> &reply, bool manual) {
    update.updateCheckedAt = scheduler.now();
    const QString unusable = L(u"无法检查更新，请稍后重试", u"Couldn't check for updates. Try again later.");
    const bool good = reply && reply.value().status == 200;
    const auto info = good ? packageIn(fixed, reply.value().body) : std::nullopt;
    if (info)
        return found(*info, manual);
    log(u"[update] 清单取不到:HTTP %1 %2"_s.arg(reply ? reply.value().status : 0)
            .arg(reply ? QString() : reply.error().detail));
    failed(reply ? unusable : netErrorText(reply.error()), manual);
}

void UpdateCheck::failed(const QString &text, bool manual) {
    if (manual)
        hooks.showHUD({.text = text, .secs = Seconds(4), .error = true});
}

void UpdateCheck::found(const UpdateInfo &info, bool manual) {
    // Until what was installed takes over, nothing older than that may come after it either.
    if (!isNewer(info.ver, fixed.VERSION) || !isNewer(info.ver, update.updatedTo)) {
        if (manual)
            hooks.showHUD(
                {.text = L(u"✓ 已是最新版本（", u"✓ Korvel is up to date (") + fixed.VERSION + L(u"）", u")."),
                 .secs = Seconds(2.5)});
        return;
    }
    if (isWellFormed(info) && updateSignatureValid(fixed, info))
        return announce(info, manual);
    log(u"[update] %1 没通过签名校验(file=%2 sha=%3 sig=%4),不提供自动更新"_s.arg(info.ver, info.file, info.sha,
                                                                                  info.sig));
    if (manual)
        hooks.showHUD({.text = L(u"新版本 ", u"Version ") + info.ver +
                               L(u" 未通过安全校验，请从官网下载",
                                 u" didn't pass the security check. Download it from the website."),
                       .secs = Seconds(8),
                       .error = true,
                       .link = fixed.SITE_URL});
}

void UpdateCheck::announce(const UpdateInfo &info, bool manual) {
    // What is being installed stays what the menu shows; the next check finds the newer one again.
    if (update.updateBusy)
        return;
    update.updateAvail = info;
    hooks.render();
    if (!manual && update.updateNotified)
        return;
    update.updateNotified = true;
    hooks.showHUD({.text = L(u"⬆ 有新版本 ", u"⬆ Korvel ") + info.ver +
                           L(u"，请在菜单中点击「更新到 ", u" is available. Choose Update to ") + info.ver +
                           L(u"」", u" in the menu."),
                   .secs = Seconds(4)});
}

} // namespace korvel
