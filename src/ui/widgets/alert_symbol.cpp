#include "ui/widgets/alert_symbol.h"

#include "ui/widgets/application_icon.h"

#include <QPainter>

namespace korvel {

namespace {

constexpr int SIDE = 48, BADGE = 24; // points

/// A triangle with an exclamation mark, in the upper left 40 points.
void drawWarningSign(QPainter &painter) {
    const QColor amber(0xf5, 0xa6, 0x23), ink(0x24, 0x29, 0x30);
    painter.setPen(QPen(amber, 5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(amber);
    painter.drawPolygon(QPolygonF{{20, 6}, {36, 34}, {4, 34}});
    painter.setPen(QPen(ink, 4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(20, 15), QPointF(20, 24));
    painter.drawPoint(QPointF(20, 31));
}

} // namespace

QPixmap alertSymbol(bool warning, qreal pixelsPerPoint) {
    const auto pixels = [&](int points) { return qRound(points * pixelsPerPoint); };
    QPixmap symbol(pixels(SIDE), pixels(SIDE));
    symbol.setDevicePixelRatio(pixelsPerPoint);
    symbol.fill(Qt::transparent);
    QPainter painter(&symbol);
    painter.setRenderHint(QPainter::Antialiasing);
    if (warning)
        drawWarningSign(painter);
    const int side = warning ? BADGE : SIDE;
    QImage icon = applicationIcon(pixels(side));
    icon.setDevicePixelRatio(pixelsPerPoint);
    painter.drawImage(QPoint(SIDE - side, SIDE - side), icon);
    return symbol;
}

} // namespace korvel
