#include "account/after_sign_in.h"

#include "app/wording.h"

namespace korvel {

AfterSignIn::AfterSignIn(HealthState &st, const Scheduler &s, Hooks h)
    : health(st), scheduler(s), hooks(std::move(h)) {}

void AfterSignIn::signedIn(const QString &user) {
    // What was asked, or seen of the job, before this sign-in says nothing about it.
    hooks.disregardOpenPolls();
    if (!health.running) {
        health.jobLoaded.reset();
        health.jobCheckedAt = DISTANT_PAST;
        health.startingUntil = scheduler.now() + STARTING_GRACE;
    }
    hooks.stopBrowserLogin();
    hooks.showHUD({.text = L(u"● 已登录 ", u"● Signed in as ") + user, .secs = Seconds(3)});
    hooks.poll();
    hooks.pairAfterLogin();
}

} // namespace korvel
