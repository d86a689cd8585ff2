#include "ui/views/notice_view.h"

#include <algorithm>

namespace korvel {

NoticeLayout noticeLayout(QSize textSize, QRect visible) {
    constexpr int SIDE = 17;
    constexpr int ABOVE = 10;
    constexpr int BELOW_MENU_BAR = 10;
    const int room = visible.height() - 2 * (ABOVE + BELOW_MENU_BAR);
    const QSize text(std::min(textSize.width(), NoticeLayout::MAX_TEXT_WIDTH),
                     std::min({textSize.height(), NoticeLayout::MAX_TEXT_HEIGHT, room}));
    const QSize panel(text.width() + 2 * SIDE, text.height() + 2 * ABOVE);
    const int x = visible.x() + (visible.width() - panel.width()) / 2;
    return {.panel = QRect(QPoint(x, visible.y() + BELOW_MENU_BAR), panel), .label = QRect(QPoint(SIDE, ABOVE), text)};
}

} // namespace korvel
