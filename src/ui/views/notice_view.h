#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <chrono>

namespace korvel {

using Seconds = std::chrono::duration<double>;

/// A notice: its text, its duration and the target of a click.
struct Notice {
    QString text;
    Seconds secs{0};
    bool error = false;
    QString link = {}; ///< Web address; if empty, a click only closes the notice.
    bool operator==(const Notice &) const = default;
};

/// The appearance of a notice.
struct NoticeView {
    QString text;
    bool error = false; ///< The frame has the error colour.
    bool operator==(const NoticeView &) const = default;
};

/// Position of a notice and its label, in points.
struct NoticeLayout {
    static constexpr int MAX_TEXT_WIDTH = 560;
    static constexpr int MAX_TEXT_HEIGHT = 1000;
    QRect panel; ///< In screen coordinates.
    QRect label; ///< Relative to the panel.
    bool operator==(const NoticeLayout &) const = default;
};

/// Layout of a notice with a text of `textSize`: centred below the top edge of `visible`, the usable area of the
/// screen.
NoticeLayout noticeLayout(QSize textSize, QRect visible);

} // namespace korvel
