#pragma once

#include "ui/views/notice_view.h"

namespace korvel {

/// Short messages that float near the top of the screen. A new notice replaces the current one.
class Notices {
public:
    virtual ~Notices() = default;
    virtual void showHUD(const Notice &notice) = 0;
    virtual void hideHUD() = 0;
};

} // namespace korvel
