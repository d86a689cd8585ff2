#include "ui/widgets/link_button.h"

#include "ui/widgets/text_styles.h"

#include <QPainter>

namespace korvel {

namespace {
constexpr int MARGIN = 2; // above and below; there is no margin at the sides
}

LinkButton::LinkButton(const QString &text, QWidget *parent) : QPushButton(text, parent) {
    setFont(uiFont(12));
    setCursor(Qt::PointingHandCursor);
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const { return fontMetrics().size(Qt::TextSingleLine, text()) + QSize(0, 2 * MARGIN); }

void LinkButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    QFont drawn = font();
    drawn.setUnderline(isEnabled() && (underMouse() || hasFocus()));
    painter.setFont(drawn);
    painter.setPen(toneColour(isEnabled() ? Tone::Link : Tone::Tertiary, palette()));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

} // namespace korvel
