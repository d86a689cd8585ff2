#pragma once

#include "app/model/tray_state.h"
#include "base/alive.h"
#include "base/scheduler.h"
#include "e2ee/pair_view.h"
#include "ports/app_services.h"
#include "service/agent_api.h"

#include <functional>
#include <optional>

namespace korvel {

/// The pairing window: shows this Mac's code and every other state of its pairing.
class Pairing {
public:
    struct Hooks {
        std::function<PairContext()> context;
        std::function<void()> startBrowserLogin;
        std::function<void()> logoutDialog;
    };
    Pairing(const E2State &e2ee, PairState &pairing, AgentApi &api, PairPanel &window, Scheduler &scheduler,
            Notices &notices, Poller &poller, Hooks hooks);

    /// Updates the window if it is on the screen.
    void updatePairWindow();
    void showPairWindow(OpenedBy by);
    /// Shows the window after a sign-in, with the pairing state reset.
    void pairAfterLogin();
    bool isVisible() const { return window.isVisible(); }

private:
    void pairButtonClicked();
    void pairRenewClicked();
    void renewed(const Result<QJsonObject> &reply);
    PairUpdate update();
    void follow(const PairUpdate &update);

    /// A failed renewal of the code.
    struct RenewFailure {
        QString error;
        QJsonObject report; ///< The report at that time; a different one clears the error.
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
