#pragma once

#include "app/model/situation.h"
#include "ports/app_services.h"

#include <functional>
#include <optional>

namespace korvel {

/// Whether to show the report now. False while the agent may still be starting up.
bool startupReportDue(const Situation &situation, int attempt);

/// The notice of the report; none if another notice already says it.
std::optional<Notice> startupNotice(const Situation &situation);

/// Shows the status in a short notice soon after launch.
class StartupReport {
public:
    struct Hooks {
        std::function<Situation()> situation;
    };
    StartupReport(Scheduler &s, Notices &n, Poller &po, Hooks h)
        : scheduler(s), notices(n), poller(po), hooks(std::move(h)) {}

    /// Reports now, or polls again after a delay. Called when the first poll after launch completes.
    void startupReport(int attempt);

private:
    Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Hooks hooks;
    Timer retry;
};

} // namespace korvel
