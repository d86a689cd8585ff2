#include "account/after_sign_in.h"

#include "account/account_notices.h"

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
    hooks.showHUD(signedInNotice(user));
    hooks.poll();
    hooks.pairAfterLogin();
}

} // namespace korvel
