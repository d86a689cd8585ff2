#include "account/after_sign_in.h"

#include "account/account_notices.h"
#include "app/model/situation.h"

namespace korvel {

AfterSignIn::AfterSignIn(HealthState &st, const Scheduler &s, Hooks h)
    : health(st), scheduler(s), hooks(std::move(h)) {}

void AfterSignIn::signedIn(const QString &user) {
    // What was asked, or seen of the job, before this sign-in says nothing about it.
    hooks.disregardOpenPolls();
    // The agent may repeat the loss of the sign-in before; the user has been told of it.
    health.authDead = health.accountGone = false;
    if (!health.running)
        expectNewJob(health, scheduler.now());
    hooks.render();
    hooks.stopBrowserLogin();
    hooks.showHUD(signedInNotice(user));
    hooks.startStoppedAgent(hooks.poll);
    hooks.pairAfterLogin();
}

} // namespace korvel
