#pragma once

#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "e2ee/pair_panel.h"
#include "e2ee/pair_view.h"
#include "ports/notices.h"
#include "ports/poller.h"
#include "service/agent_api.h"

#include <functional>
#include <optional>

namespace korvel {

/// The pairing window: shows this Mac's code and every other situation of its pairing.
class Pairing {
public:
    struct Hooks {
        std::function<PairContext()> context;
        std::function<void()> startBrowserLogin;
        std::function<void()> logoutDialog;
    };
    Pairing(const E2State &e2ee, PairState &pairing, AgentApi &api, PairPanel &window, Scheduler &scheduler,
            Notices &notices, Poller &poller, Hooks hooks);

    /// Recomputes the window; nothing while it is not on the screen.
    void updatePairWindow();
    void showPairWindow(OpenedBy by);
    /// Shows the window after a sign-in, when it has no past yet.
    void pairAfterLogin();
    bool isVisible() const { return window.isVisible(); }

private:
    void pairButtonClicked();
    void pairRenewClicked();
    void renewed(const Result<QJsonObject> &reply);
    PairUpdate update();
    void follow(const PairUpdate &update);

    /// A code could not be renewed.
    struct RenewFailure {
        QString error;
        QJsonObject report; ///< The one that was shown then: the next one takes the sentence away.
    };

    const E2State &e2ee;
    PairState &pairing;
    AgentApi &api;
    PairPanel &window;
    Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Hooks hooks;
    std::optional<RenewFailure> renewFailure;
    PairView shown;
    Timer closing;
    Alive alive;
};

} // namespace korvel
