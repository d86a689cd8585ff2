#pragma once

#include <functional>

namespace korvel {

struct NoticeView;

/// The floating panel that shows one notice. It never takes the focus.
class NoticePanel {
public:
    virtual ~NoticePanel() = default;
    /// Shows `view` in place of what was shown; `clicked` is called at a mouse-down in it.
    virtual void show(const NoticeView &view, std::function<void()> clicked) = 0;
    virtual void hide() = 0;
};

} // namespace korvel
