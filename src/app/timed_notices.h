#pragma once

#include "base/scheduler.h"
#include "ports/app_services.h"
#include "ports/desktop.h"
#include "ports/windows.h"

namespace korvel {

/// Shows each notice in the panel for its duration.
class TimedNotices : public Notices {
public:
    TimedNotices(NoticePanel &p, Desktop &d, Scheduler &s) : panel(p), desktop(d), scheduler(s) {}

    void showHUD(const Notice &notice) override;
    void hideHUD() override;

private:
    NoticePanel &panel;
    Desktop &desktop;
    Scheduler &scheduler;
    Timer takeDown;
};

} // namespace korvel
