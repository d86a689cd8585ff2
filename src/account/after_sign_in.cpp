#include "account/after_sign_in.h"

#include "account/account_notices.h"
#include "app/model/situation.h"
#include "service/job_state.h"

namespace korvel {

AfterSignIn::AfterSignIn(HealthState &st, const Scheduler &s, Notices &no, Poller &po, Renderer &re, AgentControl &ag,
                         Hooks h)
    : health(st), scheduler(s), notices(no), poller(po), renderer(re), agent(ag), hooks(std::move(h)) {}

void AfterSignIn::signedIn(const QString &user) {
    // What was asked, or seen of the job, before this sign-in says nothing about it.
    poller.ignorePollsInFlight();
    // The agent may repeat the loss of the sign-in before; the user has been told of it.
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
