#pragma once

#include "app/model/situation.h"
#include "ports/notices.h"
#include "ports/poller.h"

#include <functional>
#include <optional>

namespace korvel {

/// Whether the report after launch should be made now, or wait for the agent to come up.
bool startupReportDue(const Situation &situation, int attempt);

/// The notice of the report; none when another notice says it already.
std::optional<Notice> startupNotice(const Situation &situation);

/// Shows the resulting status once, in a short notice, soon after launch.
class StartupReport {
public:
    struct Hooks {
        std::function<Situation()> situation;
    };
    StartupReport(Scheduler &s, Notices &n, Poller &po, Hooks h)
        : scheduler(s), notices(n), poller(po), hooks(std::move(h)) {}

    /// Reports now, or polls again in a moment. The completion of launch's first poll.
    void startupReport(int attempt);

private:
    Scheduler &scheduler;
    Notices &notices;
    Poller &poller;
    Hooks hooks;
    Timer retry;
};

} // namespace korvel
