#include "account/sign_out.h"

#include "account/account_notices.h"
#include "app/model/wording.h"
#include "e2ee/requests.h"

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

/// How long the service manager may take to stop the agent before the sign-out ends without it.
constexpr milliseconds STOP_TIMEOUT = 10s;

} // namespace

AlertView signOutAlert() {
    return {.title = L(u"退出账号?", u"Sign Out?"),
            .text = L(u"退出后，手机将无法看到这台电脑", u"Your phone won't see this Mac after you sign out."),
            .warning = false,
            .buttons = {L(u"退出账号", u"Sign Out"), L(u"取消", u"Cancel")},
            .escape = 1};
}

SignOut::SignOut(TrayState &st, const FixedConfig &f, const AgentConfig &c, ConfigWaiter &w, AgentApi &a, Alerts &al,
                 ServiceControl &sv, Scheduler &s, Notices &no, Poller &po, Binding &bi, BrowserLogin &bl)
    : state(st), fixed(f), config(c), waiter(w), api(a), alerts(al), services(sv), scheduler(s), notices(no),
      poller(po), binding(bi), browserLogin(bl) {}

void SignOut::logoutDialog() {
    if (underWay)
        return;
    alerts.open(signOutAlert(), OpenedBy::User, alive.guard([this](const AlertAnswer &answer) {
        if (answer.button == 0)
            tellAgent();
    }));
}

void SignOut::tellAgent() {
    underWay = true;
    binding.abandonLogins();
    notices.showHUD(signingOutNotice());
    e2Post(api, e2LogoutRequest(), alive.guard([this](const Result<QJsonObject> &) { signOutRest(); }));
}

void SignOut::signOutRest() {
    browserLogin.stopBrowserLogin();
    binding.unbindCurrent(alive.guard([this] { waiter.whenWhole(alive.guard([this] { clear(); })); }));
}

void SignOut::clear() {
    const bool cleared = config.changeCfg([](QJsonObject &cfg) {
        for (const QString &key : {u"agentToken"_s, u"agentId"_s, u"username"_s, u"loginName"_s})
            cfg.remove(key);
    });
    finishAnyway = scheduler.after(STOP_TIMEOUT, [this, cleared] { finish(cleared); });
    scheduler.background([&sv = services, label = fixed.AGENT_LABEL] { return sv.bootout(label); },
                         alive.guard([this, cleared](ServiceResult) { finish(cleared); }));
}

void SignOut::finish(bool cleared) {
    if (!std::exchange(underWay, false))
        return;
    finishAnyway.cancel();
    state.health.account.clear();
    state.health.authDead = state.health.accountGone = false;
    state.e2ee.e2 = {}; // it belongs to the account that was signed out
    state.e2ee.e2Retries.clear();
    poller.poll();
    notices.showHUD(cleared ? signedOutNotice() : signOutFailedNotice());
}

} // namespace korvel
