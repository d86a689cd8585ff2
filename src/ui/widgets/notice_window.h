#pragma once

#include "ports/windows.h"

#include <memory>

namespace korvel {

/// The notice on the screen: a small dark panel near the top that never takes the focus.
class NoticeWindow final : public NoticePanel {
public:
    NoticeWindow();
    ~NoticeWindow() override;

    void show(const NoticeView &view, std::function<void()> clicked) override;
    void hide() override;

private:
    class HUDView;
    class Announcement;
    std::unique_ptr<HUDView> hudPanel; ///< The current notice.
};

} // namespace korvel
