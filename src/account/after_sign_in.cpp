#include "account/after_sign_in.h"

#include "account/account_notices.h"
#include "app/model/situation.h"
#include "service/job_state.h"

namespace korvel {

AfterSignIn::AfterSignIn(HealthState &st, const Scheduler &s, Notices &no, Poller &po, Renderer &re, AgentControl &ag,
                         Hooks h)
    : health(st), scheduler(s), notices(no), poller(po), renderer(re), agent(ag), hooks(std::move(h)) {}

void AfterSignIn::signedIn(const QString &user) {
    // Results of polls and job lookups from before this sign-in do not apply to it.
    poller.ignorePollsInFlight();
    // The agent may still report the loss of the previous sign-in, of which the user has been notified.
    health.authDead = health.accountGone = false;
    if (!health.running)
        expectNewJob(health, scheduler.now());
    renderer.stateChanged();
    hooks.stopBrowserLogin();
    notices.showHUD(signedInNotice(user));
    agent.startStoppedAgent([this] { poller.poll(); });
    hooks.pairAfterLogin();
}

} // namespace korvel
