#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
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

/// One floating notice.
struct NoticeView {
    QString text;
    bool error = false; ///< Error colour of the frame.
    bool operator==(const NoticeView &) const = default;
};

/// Where a notice and its label lie, in points.
struct NoticeLayout {
    static constexpr int MAX_TEXT_WIDTH = 560;
    static constexpr int MAX_TEXT_HEIGHT = 1000;
    QRect panel; ///< On the screen.
    QRect label; ///< In the panel.
    bool operator==(const NoticeLayout &) const = default;
};

/// Lays a notice out for a text of `textSize` on a screen whose visible frame is `visible`: centred, below its top
/// edge.
NoticeLayout noticeLayout(QSize textSize, QRect visible);

} // namespace korvel
