#pragma once

#include "ui/widgets/text_styles.h"

#include <QScrollArea>

namespace korvel {

/// A text from outside in a window: as high as it needs, and scrolled where that is more than it may have.
class ScrollingText final : public QScrollArea {
public:
    ScrollingText(ToneLabel *label, int width, QWidget *parent);

    /// Shows `text`, and nothing at all when it is empty.
    void setTextOrHide(const QString &text);
    /// The height of the whole text.
    int fullHeight() const;
    /// Gives the text that height, or as much of it as it needs.
    void setRoom(int height);

private:
    ToneLabel *const label;
    const int width;
};

} // namespace korvel
