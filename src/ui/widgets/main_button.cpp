#include "ui/widgets/main_button.h"

#include "ui/widgets/text_styles.h"

#include <QPainter>

namespace korvel {

namespace {

constexpr qreal RADIUS = 6;
constexpr QColor BLUE(0x25, 0x63, 0xeb), PRESSED(0x1d, 0x4f, 0xbf), HOVERED(0x2f, 0x6c, 0xee);

QColor colourOf(const QPushButton &button) {
    if (!button.isEnabled())
        return groundColour(Ground::Sunken, button.palette());
    if (button.isDown())
        return PRESSED;
    return button.underMouse() ? HOVERED : BLUE;
}

} // namespace

MainButton::MainButton(QWidget *parent) : QPushButton(parent) {
    setDefault(true);
    setFont(uiFont(13, QFont::DemiBold));
    setFixedHeight(34);
}

void MainButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor colour = colourOf(*this);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool standsOut = contrastRatio(colour, palette().color(QPalette::Window)) >= EDGE_CONTRAST;
    painter.setPen(standsOut ? colour : edgeColour(palette()));
    painter.setBrush(colour);
    painter.drawRoundedRect(frame, RADIUS, RADIUS);
    if (hasFocus()) {
        painter.setPen(QPen(QColor(255, 255, 255, 190), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame.adjusted(2.5, 2.5, -2.5, -2.5), RADIUS - 2, RADIUS - 2);
    }
    painter.setPen(isEnabled() ? QColor(Qt::white) : toneColour(Tone::Secondary, palette()));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

} // namespace korvel
