#pragma once

#include "base/scheduler.h"
#include "ports/desktop.h"
#include "ports/notice_panel.h"

#include <QString>
#include <chrono>

namespace korvel {

using Seconds = std::chrono::duration<double>;

/// A notice to be shown: what it says, for how long, and what a click opens.
struct Notice {
    QString text;
    Seconds secs{0};
    bool error = false;
    QString link = {}; ///< Web address; empty: a click only closes the notice.
    bool operator==(const Notice &) const = default;
};

/// Short messages that float near the top of the screen. At most one is shown; a new one takes the old one's place.
class Notices {
public:
    Notices(NoticePanel &p, Desktop &d, Scheduler &s) : panel(p), desktop(d), scheduler(s) {}

    void showHUD(const Notice &notice);
    void hideHUD();

private:
    NoticePanel &panel;
    Desktop &desktop;
    Scheduler &scheduler;
    Timer takeDown;
};

} // namespace korvel
