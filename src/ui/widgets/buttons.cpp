#include "ui/widgets/buttons.h"

#include "ui/widgets/text_styles.h"

#include <QPainter>
#include <algorithm>

namespace korvel {

namespace {

constexpr int TEXT_MARGINS = 32; // left and right together
constexpr int LINK_MARGIN = 2;   // above and below; there is no margin at the sides
constexpr qreal MAIN_RADIUS = 6;
constexpr QColor BLUE(0x25, 0x63, 0xeb), PRESSED(0x1d, 0x4f, 0xbf), HOVERED(0x2f, 0x6c, 0xee);

QColor colourOf(const QPushButton &button) {
    if (!button.isEnabled())
        return groundColour(Ground::Sunken, button.palette());
    if (button.isDown())
        return PRESSED;
    return button.underMouse() ? HOVERED : BLUE;
}

} // namespace

int TextButton::widthFor(const QString &text) const { return fontMetrics().horizontalAdvance(text) + TEXT_MARGINS; }

QSize TextButton::sizeHint() const {
    const QSize usual = QPushButton::sizeHint();
    return {std::max(usual.width(), widthFor(text())), usual.height()};
}

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
    painter.drawRoundedRect(frame, MAIN_RADIUS, MAIN_RADIUS);
    if (hasFocus()) {
        painter.setPen(QPen(QColor(255, 255, 255, 190), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame.adjusted(2.5, 2.5, -2.5, -2.5), MAIN_RADIUS - 2, MAIN_RADIUS - 2);
    }
    painter.setPen(isEnabled() ? QColor(Qt::white) : toneColour(Tone::Secondary, palette()));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

LinkButton::LinkButton(const QString &text, QWidget *parent) : QPushButton(text, parent) {
    setFont(uiFont(12));
    setCursor(Qt::PointingHandCursor);
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
    return fontMetrics().size(Qt::TextSingleLine, text()) + QSize(0, 2 * LINK_MARGIN);
}

void LinkButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    QFont drawn = font();
    drawn.setUnderline(isEnabled() && (underMouse() || hasFocus()));
    painter.setFont(drawn);
    painter.setPen(toneColour(isEnabled() ? Tone::Link : Tone::Tertiary, palette()));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

} // namespace korvel
