#include "ui/widgets/scrolling_text.h"

#include <QScrollBar>
#include <algorithm>

namespace korvel {

ScrollingText::ScrollingText(ToneLabel *l, int w, QWidget *parent) : QScrollArea(parent), label(l), width(w) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidget(label);
    // Shows the window's background.
    viewport()->setAutoFillBackground(false);
    label->setAutoFillBackground(false);
    label->setWordWrap(true);
    setFixedWidth(width);
    setRoom(fullHeight());
}

void ScrollingText::setTextOrHide(const QString &text) {
    if (label->text() != text) {
        label->setText(text);
        setRoom(fullHeight());
    }
    setVisible(!text.isEmpty());
}

int ScrollingText::fullHeight() const { return label->heightForWidth(width); }

void ScrollingText::setRoom(int height) {
    const bool scrolls = height < fullHeight();
    const int bar = scrolls ? verticalScrollBar()->sizeHint().width() : 0;
    label->setFixedSize(width - bar, label->heightForWidth(width - bar));
    setFixedHeight(std::min(height, fullHeight()));
    setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    setFocusPolicy(scrolls ? Qt::StrongFocus : Qt::NoFocus); // allows scrolling with keys
}

} // namespace korvel
