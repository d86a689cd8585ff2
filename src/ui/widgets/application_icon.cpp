#include "ui/widgets/application_icon.h"

#include "ui/widgets/icon_image.h"

#include <QLinearGradient>
#include <QPainter>

namespace korvel {

namespace {

/// From the icon grid: the margin around the shape and the radius of its corners, relative to the side.
constexpr double MARGIN = 100.0 / 1024;
constexpr double RADIUS = 185.0 / 1024;

} // namespace

QImage applicationIcon(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side, side);
    QLinearGradient ground(0, MARGIN, 0, 1 - MARGIN);
    ground.setColorAt(0, QColor(0x60, 0xa5, 0xfa));
    ground.setColorAt(1, QColor(0x1d, 0x4e, 0xd8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(0, 0, 1, 1).adjusted(MARGIN, MARGIN, -MARGIN, -MARGIN), RADIUS, RADIUS);
    painter.translate(0.25, 0.25);
    painter.scale(0.5 / TEMPLATE_POINTS, 0.5 / TEMPLATE_POINTS);
    painter.fillPath(iconShape(true), Qt::white);
    return image;
}

} // namespace korvel
