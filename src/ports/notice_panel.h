#pragma once

#include <functional>

namespace korvel {

struct NoticeView;

/// The floating panel that shows one notice. Never takes the focus.
class NoticePanel {
public:
    virtual ~NoticePanel() = default;
    /// Replaces the current notice. Calls `clicked` on mouse-down.
    virtual void show(const NoticeView &view, std::function<void()> clicked) = 0;
    virtual void hide() = 0;
};

} // namespace korvel
