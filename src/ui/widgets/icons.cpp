#include "ui/widgets/icons.h"

#include "ui/views/icon_view.h"

#include <QBuffer>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace korvel {

namespace {

const QColor ON_ANY_PANEL(0x3b, 0x82, 0xf6); // contrast of at least 3:1 on white and near-black (WCAG 2.1, 1.4.11)

QPainterPath frame(double inset, double thickness) {
    const QRectF outer = QRectF(2, 2, 14, 14).adjusted(inset, inset, -inset, -inset);
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    path.addRect(outer);
    path.addRect(outer.adjusted(thickness, thickness, -thickness, -thickness));
    return path;
}

/// The shape of the menu-bar icon on a canvas of TEMPLATE_POINTS, origin at the top left, to be filled.
QPainterPath iconShape(bool on) {
    // Active: a frame 2.75 thick. Inactive: an outline 1.5 wide, its centre line 0.75 inside the square.
    QPainterPath shape = on ? frame(0, 2.75) : frame(0, 1.5);
    shape.addRect(QRectF(7.25, 7.25, 3.5, 3.5)); // the centre
    return shape;
}

QPainterPath panelShape(const IconView &view) {
    // A running agent without a connection shows only the frame: panels have no disabled appearance.
    return view.on && view.dimmed ? frame(0, 2.75) : iconShape(view.on);
}

QImage picture(const QPainterPath &shape, int size, const QColor &colour, QPainter::RenderHints hints) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(hints);
    painter.scale(size / TEMPLATE_POINTS, size / TEMPLATE_POINTS);
    painter.fillPath(shape, colour);
    return image;
}

/// From the icon grid: the margin around the shape and the radius of its corners, relative to the side.
constexpr double APPLICATION_MARGIN = 100.0 / 1024;
constexpr double APPLICATION_RADIUS = 185.0 / 1024;

constexpr int ALERT_SIDE = 48, ALERT_BADGE = 24; // points

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

QByteArray templatePng(bool on, int scale) {
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture(iconShape(on), static_cast<int>(TEMPLATE_POINTS) * scale, Qt::black, QPainter::Antialiasing)
        .save(&buffer, "PNG");
    return png;
}

QIcon panelIcon(const IconView &view) {
    QIcon icon;
    const QPainterPath shape = panelShape(view);
    // No antialiasing is needed: all edges are straight and fall on whole pixels.
    for (const int size : {16, 18, 22, 24, 32, 36, 44, 48, 54, 64})
        icon.addPixmap(QPixmap::fromImage(picture(shape, size, ON_ANY_PANEL, {})));
    return icon;
}

QImage applicationIcon(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side, side);
    QLinearGradient ground(0, APPLICATION_MARGIN, 0, 1 - APPLICATION_MARGIN);
    ground.setColorAt(0, QColor(0x60, 0xa5, 0xfa));
    ground.setColorAt(1, QColor(0x1d, 0x4e, 0xd8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(
        QRectF(0, 0, 1, 1).adjusted(APPLICATION_MARGIN, APPLICATION_MARGIN, -APPLICATION_MARGIN, -APPLICATION_MARGIN),
        APPLICATION_RADIUS, APPLICATION_RADIUS);
    painter.translate(0.25, 0.25);
    painter.scale(0.5 / TEMPLATE_POINTS, 0.5 / TEMPLATE_POINTS);
    painter.fillPath(iconShape(true), Qt::white);
    return image;
}

QPixmap alertSymbol(bool warning, qreal pixelsPerPoint) {
    const auto pixels = [&](int points) { return qRound(points * pixelsPerPoint); };
    QPixmap symbol(pixels(ALERT_SIDE), pixels(ALERT_SIDE));
    symbol.setDevicePixelRatio(pixelsPerPoint);
    symbol.fill(Qt::transparent);
    QPainter painter(&symbol);
    painter.setRenderHint(QPainter::Antialiasing);
    if (warning)
        drawWarningSign(painter);
    const int side = warning ? ALERT_BADGE : ALERT_SIDE;
    QImage icon = applicationIcon(pixels(side));
    icon.setDevicePixelRatio(pixelsPerPoint);
    painter.drawImage(QPoint(ALERT_SIDE - side, ALERT_SIDE - side), icon);
    return symbol;
}

} // namespace korvel
