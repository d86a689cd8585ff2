#pragma once

#include "ui/views/notice_view.h"

namespace korvel {

/// Short messages that float near the top of the screen. At most one is shown; a new one takes the old one's place.
class Notices {
public:
    virtual ~Notices() = default;
    virtual void showHUD(const Notice &notice) = 0;
    virtual void hideHUD() = 0;
};

} // namespace korvel
