#pragma once

#include "ui/widgets/text_styles.h"

#include <QScrollArea>

namespace korvel {

/// A text from outside: as high as needed, scrolling beyond a maximum height.
class ScrollingText final : public QScrollArea {
public:
    ScrollingText(ToneLabel *label, int width, QWidget *parent);

    /// Shows `text`, or hides the widget if it is empty.
    void setTextOrHide(const QString &text);
    /// Height of the complete text.
    int fullHeight() const;
    /// Sets the maximum height.
    void setRoom(int height);

private:
    ToneLabel *const label;
    const int width;
};

} // namespace korvel
