#include "e2ee/pairing.h"

#include "app/model/wording.h"
#include "base/plain_text.h"
#include "e2ee/e2ee_views.h"
#include "e2ee/requests.h"

namespace korvel {

namespace {
constexpr milliseconds SUCCESS_SHOWN = 1400ms;
}

Pairing::Pairing(const E2State &e, PairState &p, AgentApi &a, PairPanel &w, Scheduler &s, Notices &no, Poller &po,
                 Hooks h)
    : e2ee(e), pairing(p), api(a), window(w), scheduler(s), notices(no), poller(po), hooks(std::move(h)) {
    window.connect({.buttonClicked = [this] { pairButtonClicked(); }, .renewClicked = [this] { pairRenewClicked(); }});
}

void Pairing::updatePairWindow() {
    if (window.isVisible())
        follow(update());
}

PairUpdate Pairing::update() {
    PairUpdate update = pairView(e2ee.e2, pairing, hooks.context());
    if (renewFailure && (renewFailure->report != e2ee.e2 || !update.view.refreshVisible))
        renewFailure.reset();
    if (renewFailure)
        update.view.error = renewFailure->error;
    return update;
}

void Pairing::follow(const PairUpdate &update) {
    switch (update.step) {
    case PairUpdate::Step::Keep:
        return;
    case PairUpdate::Step::Vanish:
        return window.hide();
    case PairUpdate::Step::Show:
        closing.cancel();
        break;
    case PairUpdate::Step::Celebrate:
        closing = scheduler.after(SUCCESS_SHOWN, [this] {
            window.hide();
            pairing.pairClosing = pairing.pairSawCode = false;
        });
        notices.showHUD(encryptedNotice());
        break;
    }
    shown = update.view;
    window.apply(shown);
}

void Pairing::showPairWindow(OpenedBy by) {
    if (!window.isVisible())
        renewFailure.reset();
    const PairUpdate now = update();
    // Never shows a window that would vanish at once.
    if (now.step != PairUpdate::Step::Vanish)
        window.present(now.step == PairUpdate::Step::Keep ? shown : now.view, by);
    follow(now);
}

void Pairing::pairAfterLogin() {
    pairing.pairSawCode = false;
    showPairWindow(OpenedBy::Program);
    // A report from before the sign-in may have hidden the window: then the next report opens it automatically.
    pairing.pairAutoShown = window.isVisible();
}

void Pairing::pairButtonClicked() {
    window.hide();
    if (pairing.pairLogout)
        hooks.logoutDialog();
    else if (pairing.pairRelogin)
        hooks.startBrowserLogin();
}

void Pairing::pairRenewClicked() {
    if (pairing.pairRenewing)
        return;
    pairing.pairRenewing = true;
    renewFailure.reset();
    updatePairWindow();
    e2Post(api, renewCodeRequest(), alive.guard([this](const Result<QJsonObject> &reply) { renewed(reply); }));
}

void Pairing::renewed(const Result<QJsonObject> &reply) {
    pairing.pairRenewing = false;
    if (!agentOk(reply))
        renewFailure = {.error = multiLine(errText(reply)), .report = e2ee.e2};
    updatePairWindow();
    poller.poll();
}

} // namespace korvel
