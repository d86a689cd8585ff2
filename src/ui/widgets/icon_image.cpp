#include "ui/widgets/icon_image.h"

#include "ui/views/icon_view.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPixmap>

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

QPainterPath centre() {
    QPainterPath path;
    path.addRect(QRectF(7.25, 7.25, 3.5, 3.5));
    return path;
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

} // namespace

QPainterPath iconShape(bool on) {
    // Active: a frame 2.75 thick. Inactive: an outline 1.5 wide, its centre line 0.75 inside the square.
    QPainterPath shape = on ? frame(0, 2.75) : frame(0, 1.5);
    shape.addPath(centre());
    return shape;
}

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

} // namespace korvel
